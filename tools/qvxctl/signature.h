// Calls of exports by the types in their declarations: nothing here knows a particular export.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "arguments.h"

namespace qvxctl {

using EntryPoint = void (*)();

struct CallResult {
  std::optional<Value> returned;
  std::vector<NamedValue> outputs;
};

// A call with its arguments in place.
using Call = std::function<CallResult(EntryPoint)>;

template <class>
struct Signature;

template <class Result, class... Types>
struct Signature<Result(Types...)> {
  static constexpr std::size_t arity = sizeof...(Types);

  // What is returned and written: "-> int, UpperLmt:int, LowerLmt:int".
  static std::string results(const std::vector<Parameter>& parameters) {
    std::string text;
    if constexpr (!std::is_void_v<Result>) text = std::string("-> ") + typeName<Result>();
    std::size_t i = 0;
    (appendResult<Types>(parameters[i++], text), ...);
    return text.empty() ? "-> nothing" : text;
  }

  // Adds the arguments to a command. The call takes them once the command line has been read.
  static Call define(const std::vector<Parameter>& parameters, CLI::App& command) {
    const auto arguments = std::make_shared<std::tuple<Argument<Types>...>>();
    std::apply(
        [&](auto&... argument) {
          std::size_t i = 0;
          (addIfGiven(argument, parameters[i++], command), ...);
        },
        *arguments);
    return [=](EntryPoint entry) { return call(entry, *arguments, parameters); };
  }

 private:
  template <class Type>
  static void appendResult(const Parameter& parameter, std::string& text) {
    if (Argument<Type>::given(parameter)) return;
    text += (text.empty() ? "-> " : ", ") + parameter.name + ':' + Argument<Type>::type;
  }

  static void addIfGiven(auto& argument, const Parameter& parameter, CLI::App& command) {
    if (argument.given(parameter)) argument.add(command, parameter.name);
  }

  static void reportIfWritten(const auto& argument, const Parameter& parameter,
                              CallResult& result) {
    if constexpr (requires { argument.value(); }) {
      if (!argument.given(parameter)) result.outputs.push_back({parameter.name, argument.value()});
    }
  }

  static CallResult call(EntryPoint entry, auto& arguments,
                         const std::vector<Parameter>& parameters) {
    const auto function = reinterpret_cast<Result (*)(Types...)>(entry);
    CallResult result;
    std::apply(
        [&](auto&... argument) {
          if constexpr (std::is_void_v<Result>) {
            function(argument.pass()...);
          } else {
            result.returned = valueOf(function(argument.pass()...));
          }
          std::size_t i = 0;
          (reportIfWritten(argument, parameters[i++], result), ...);
        },
        arguments);
    return result;
  }
};

}  // namespace qvxctl
