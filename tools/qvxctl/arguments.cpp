#include "arguments.h"

#include "failure.h"
#include "numbers.h"
#include "text.h"

namespace qvxctl {

void ArgumentWords::take(const Parameter& parameter, int& number) {
  const std::string& word = next(parameter);
  number = wholeNumber(label(parameter), word);
}

void ArgumentWords::take(const Parameter& parameter, long& number) {
  int narrow = 0;
  take(parameter, narrow);
  number = narrow;
}

void ArgumentWords::take(const Parameter& parameter, double& number) {
  const std::string& word = next(parameter);
  number = decimalNumber(label(parameter), word);
}

void ArgumentWords::take(const Parameter& parameter, TextBuffer& text) {
  const std::string word = ansi(next(parameter));
  if (word.size() >= text.size()) {
    throw Failure(ExitCode::badUsage, label(parameter) + ": longer than " +
                                          std::to_string(text.size() - 1) + " characters");
  }
  std::ranges::copy(word, text.begin());
}

void ArgumentWords::takeNone(const Parameter& parameter) {
  if (next(parameter) == "none") return;
  throw Failure(ExitCode::badUsage, label(parameter) + ": a function; from here only \"none\"");
}

void ArgumentWords::expectEnd() const {
  if (position_ == words_.size()) return;
  throw Failure(ExitCode::badUsage,
                exportName_ + ": unexpected argument " + quoted(words_[position_]));
}

const std::string& ArgumentWords::next(const Parameter& parameter) {
  if (position_ < words_.size()) return words_[position_++];
  throw Failure(ExitCode::badUsage, exportName_ + ": argument " + parameter.name + " is missing");
}

std::string ArgumentWords::label(const Parameter& parameter) const {
  return exportName_ + ' ' + parameter.name;
}

}  // namespace qvxctl
