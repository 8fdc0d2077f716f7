// One call of an exported function: no exception leaves it, and the trace records it.
#pragma once

#include <concepts>
#include <string>
#include <tuple>
#include <utility>

#include "api/guard.h"
#include "qvx64/api.h"
#include "trace/trace.h"

namespace qvx {

// An argument or a result as the trace has it. What a pointer stands for is looked at after the
// call.
std::string textOf(std::integral auto number) {
  return std::to_string(number);
}
std::string textOf(double number);
std::string textOf(const char* ansi);
std::string textOf(const wchar_t* text);
std::string textOf(const qvx_long* output);
std::string textOf(const short* array);
std::string textOf(void (*function)());

template <class... Arguments>
class Call {
 public:
  explicit Call(const char* name, Arguments... arguments) noexcept
      : name_((trace::begin(), name)), arguments_(arguments...) {}

  // The body's result, or the fallback when it throws.
  template <class Result, class Body>
  Result gives(Result fallback, Body body) noexcept {
    const Result result = guarded(fallback, std::move(body));
    tell();
    told([&] { line_.word("result", textOf(result)); });
    return result;
  }

  template <class Body>
  void does(Body body) noexcept {
    guarded(std::move(body));
    tell();
  }

 private:
  // Lists the arguments, parted by commas.
  void tell() noexcept {
    told([this] {
      const auto list = [](const auto&... values) {
        std::string all;
        ((all += (all.empty() ? "" : ",") + textOf(values)), ...);
        return all;
      };
      line_.word("function", name_).word("arguments", std::apply(list, arguments_));
    });
  }

  // A line without one of its fields would mislead.
  template <class Tell>
  void told(const Tell& tell) noexcept {
    if (line_.isOn() && !guarded(false, [&] { return tell(), true; })) line_.drop();
  }

  const char* name_;
  std::tuple<Arguments...> arguments_;
  trace::Line line_{"call"};
};

}  // namespace qvx
