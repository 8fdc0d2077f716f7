#include <windows.h>

#include "cameras.h"
#include "command_line.h"
#include "commands.h"
#include "exports.h"
#include "failure.h"
#include "output.h"
#include "qvx64/api.h"

namespace qvxctl {

namespace {

// Looked up at run time, so that one client works with older and newer libraries.
EntryPoint entryPointOf(const Export& wanted) {
  const FARPROC found = GetProcAddress(GetModuleHandleW(L"QVX64.dll"), wanted.name.c_str());
  if (found != nullptr) return reinterpret_cast<EntryPoint>(found);
  throw Failure(ExitCode::libraryMismatch, "this QVX64.dll does not export " + wanted.name);
}

void prepareCamera(const Options& options) {
  if (options.initFirst) {
    openCamera(options);
  } else if (options.device) {
    SetVideoDeviceIndex(*options.device);
  }
}

CallResult callAside(const Call& call, EntryPoint entry) {
  const LibraryOutputAside aside;
  return call(entry);
}

void print(const Options& options, const CallResult& result) {
  Json::Value json = object({{"result", result.returned ? result.returned->json : Json::Value()}});
  std::string text = result.returned ? result.returned->text + '\n' : "";
  for (const auto& [name, value] : result.outputs) {
    json[name] = value.json;
    text += name + " = " + value.text + '\n';
  }
  if (!text.empty()) text.pop_back();
  if (options.json || !text.empty()) printResult(options, json, text);
}

// Looks the export up before a camera is touched.
void run(const Options& options, const Export& wanted, const Call& call) {
  const EntryPoint entry = entryPointOf(wanted);
  prepareCamera(options);
  print(options, callAside(call, entry));
}

}  // namespace

void defineCall(CLI::App& command, const Options& options) {
  command.require_subcommand(1);
  for (const Export& known : exportTable()) {
    CLI::App* const part = command.add_subcommand(known.name, known.results)->group("Exports");
    part->callback([&options, &known, call = known.define(known.parameters, *part)] {
      run(options, known, call);
    });
  }
}

}  // namespace qvxctl
