// Calls of exports by the types in their declarations: nothing here knows a particular export.
#pragma once

#include <functional>
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

  static std::string usage(const std::vector<Parameter>& parameters) {
    std::string given, results;
    if constexpr (!std::is_void_v<Result>) results = typeName<Result>();
    std::size_t i = 0;
    (describe<Types>(parameters[i++], given, results), ...);
    return results.empty() ? given : given + " -> " + results;
  }

  static Call bind(const std::vector<Parameter>& parameters, ArgumentWords& words) {
    std::tuple<Argument<Types>...> arguments;
    std::apply(
        [&](auto&... argument) {
          std::size_t i = 0;
          (takeIfGiven(argument, parameters[i++], words), ...);
        },
        arguments);
    words.expectEnd();
    return [=](EntryPoint entry) mutable { return call(entry, arguments, parameters); };
  }

 private:
  template <class Type>
  static void describe(const Parameter& parameter, std::string& given, std::string& results) {
    const std::string described = parameter.name + ':' + Argument<Type>::type;
    if (Argument<Type>::given(parameter)) {
      given += " <" + described + '>';
    } else {
      results += (results.empty() ? "" : ", ") + described;
    }
  }

  static void takeIfGiven(auto& argument, const Parameter& parameter, ArgumentWords& words) {
    if (argument.given(parameter)) argument.take(parameter, words);
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
