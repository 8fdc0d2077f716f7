#include <windows.h>

#include <algorithm>

#include "cameras.h"
#include "commands.h"
#include "exports.h"
#include "failure.h"
#include "json.h"
#include "output.h"
#include "qvx64/api.h"

namespace qvxctl {

namespace {

const Export& exportNamed(const std::string& name) {
  const auto table = exportTable();
  const auto found =
      std::ranges::find_if(table, [&name](const Export& known) { return known.name == name; });
  if (found == table.end()) {
    throw Failure(ExitCode::badUsage,
                  "unknown export " + quoted(name) + "; see qvxctl call --help");
  }
  return *found;
}

Call bindCall(const Export& wanted, const Options& options) {
  ArgumentWords words(wanted.name, {options.arguments.begin() + 1, options.arguments.end()});
  return wanted.bind(wanted.parameters, words);
}

// Looked up at run time, so that one client goes with older and newer libraries.
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

void printJson(const CallResult& result) {
  std::vector<json::Member> members = {
      {"result", result.returned ? result.returned->json : json::null}};
  for (const auto& [name, value] : result.outputs) members.emplace_back(name, value.json);
  printLine(json::object(members));
}

void printText(const CallResult& result) {
  if (result.returned) printLine(result.returned->text);
  for (const auto& [name, value] : result.outputs) printLine(name + " = " + value.text);
}

}  // namespace

void callExport(const Options& options) {
  if (options.arguments.empty()) {
    throw Failure(ExitCode::badUsage,
                  "call: the name of an export is missing; see qvxctl call --help");
  }
  const Export& wanted = exportNamed(options.arguments.front());
  // Everything that can be wrong with the command is found before a camera is touched.
  const Call call = bindCall(wanted, options);
  const EntryPoint entry = entryPointOf(wanted);
  prepareCamera(options);
  const CallResult result = callAside(call, entry);
  if (options.json) return printJson(result);
  printText(result);
}

}  // namespace qvxctl
