// `brindle describe`.
#include <iostream>
#include <string>

#include <Brindle/BDDateRange.h>
#include <Brindle/BDRelativePhrases.h>
#include <Brindle/Platform/NSString.h>

#include "Command.h"
#include "Json.h"
#include "RangeOptions.h"

namespace tool {
namespace {

using namespace brindle;

constexpr std::string_view kHelp =
    R"(usage: brindle describe AMOUNT [--locale LOCALE] [--json]

Prints how far away something is, in words.

  AMOUNT           a number and a unit (day, week, month, quarter or year), such as "-3 weeks" or
                   1day; negative is in the past
  --locale LOCALE  the language, such as pl or pt-BR; the environment's by default, English when
                   nobody knows it
  --json           one JSON object: offset, unit, phrase, numeric, everyday

  phrase           one word for each unit and direction, put together; its number has 32 bits
  numeric          in the language's own grammar, always with a number
  everyday         the same with words for small numbers: yesterday, next week
)";

constexpr Option kOptions[] = {kLocaleOption, kJsonOption};

int run(std::span<const std::string_view> given) {
  const Words words(given, kOptions);
  std::string text;
  for (const std::string_view word : words.rest()) {
    if (!text.empty()) text += ' ';
    text += word;
  }
  const Amount amount = amountFrom("describe", text);
  applySettings(words);
  const std::string phrase(BDDateRange::descriptionForUnit(amount.unit, amount.count));
  const std::string numeric =
      relativePhrase(amount.unit, amount.count, nullptr, PhraseStyle::numeric);
  const std::string everyday = relativePhrase(amount.unit, amount.count);
  if (words.has("--json")) {
    std::cout << "{\"offset\": " << amount.count
              << ", \"unit\": " << jsonString(nameOfUnit(amount.unit))
              << ", \"phrase\": " << jsonString(phrase) << ", \"numeric\": " << jsonString(numeric)
              << ", \"everyday\": " << jsonString(everyday) << "}\n";
  } else {
    std::cout << "phrase    " << phrase << "\nnumeric   " << numeric << "\neveryday  " << everyday
              << '\n';
  }
  return kDone;
}

}  // namespace

const Command kDescribeCommand{"describe", "how far away something is, in words", kHelp, run};

}  // namespace tool
