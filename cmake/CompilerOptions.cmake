# One dialect and one set of warnings for everything that is ours. Third-party code that is built
# along (GoogleTest) keeps its own.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(qvx_options INTERFACE)
target_compile_options(
  qvx_options
  INTERFACE -Wall -Wextra -Wconversion -Werror
            # In one piece clang finds the shadows of what another file names.
            $<$<NOT:$<AND:$<BOOL:${CMAKE_UNITY_BUILD}>,$<CXX_COMPILER_ID:Clang>>>:-Wshadow>
            # clang counts signs as conversions, which gcc does not in C++; for Windows it takes the
            # identifiers of ks.h for incomplete, and COM's "nothrow" for a promise.
            $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion -Wno-unknown-pragmas>
            $<$<AND:$<BOOL:${WIN32}>,$<CXX_COMPILER_ID:Clang>>:-Wno-missing-braces
            -Wno-microsoft-exception-spec -Wno-unused-command-line-argument>
            # The cameras' formulas are given operation by operation: none may be fused.
            -ffp-contract=off)

if(QVX_SANITIZE)
  add_compile_options(-fsanitize=${QVX_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QVX_SANITIZE})
endif()

if(MINGW)
  # Everything of the compiler's runtime goes inside: what we build imports system DLLs only.
  add_link_options(-static)
  add_compile_options($<$<CONFIG:Debug>:-gdwarf-4>) # the newest form that Wine's debugger reads
  add_compile_definitions(UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00)
endif()
