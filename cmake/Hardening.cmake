# Whatever is built for Windows: checks against overruns, a layout that differs at every load, tables
# that are read-only, no unused code; and the same bytes whoever builds it, wherever and whenever.
if(NOT MINGW)
  return()
endif()
find_package(Python3 REQUIRED COMPONENTS Interpreter)

# The checks work in optimised code only; what they call is ours (runtime_checks.cpp).
set(qvx_hardening -fstack-protector-strong -ffunction-sections -fdata-sections
                  -ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -Werror=date-time)
add_compile_options(${qvx_hardening} $<$<CONFIG:Release>:-D_FORTIFY_SOURCE=2>)
add_link_options(-Wl,--dynamicbase,--high-entropy-va,--nxcompat -Wl,--gc-sections
                 -Wl,--no-insert-timestamp)

# For libraries that are built as projects of their own.
list(JOIN qvx_hardening " " qvx_hardening_flags)

add_subdirectory(src/platform/windows/runtime_checks)
link_libraries(qvx_runtime_checks)

# After each linking.
foreach(rule CMAKE_CXX_LINK_EXECUTABLE CMAKE_CXX_CREATE_SHARED_LIBRARY CMAKE_CXX_CREATE_SHARED_MODULE)
  list(APPEND ${rule} "${Python3_EXECUTABLE} ${CMAKE_CURRENT_LIST_DIR}/protect_tables.py <TARGET>")
endforeach()
