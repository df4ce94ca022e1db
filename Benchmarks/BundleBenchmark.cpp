// What words and bundles cost once they are known, beside GNUstep's bundles and the C library's
// gettext: 16 keys in turn from a table of 1,000, found and missing, and a bundle by its path.
#include <libintl.h>

#include <array>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <Brindle/Platform/NSBundle.h>
#include <Brindle/Platform/NSLocale.h>

#include "PeerRun.h"

namespace brindle {
namespace {

constexpr std::size_t kWords = 1000;
constexpr std::size_t kKeys = 16;

std::string keyAt(std::size_t i) { return "key number " + std::to_string(1000 + i); }
std::string wordAt(std::size_t i) { return "Wort Nummer " + std::to_string(1000 + i); }

void append(std::string& file, std::size_t number) {
  for (unsigned shift = 0; shift < 32; shift += 8) {
    file += static_cast<char>(number >> shift & 0xFFU);
  }
}

// A catalogue of messages as msgfmt writes it, without its hash table: the keys are sorted.
std::string catalogue() {
  std::string texts;
  std::string keys;
  std::string words;
  const std::size_t begin = 28 + 16 * (kWords + 1);
  const auto add = [&](std::string& table, const std::string& text) {
    append(table, text.size());
    append(table, begin + texts.size());
    texts += text + '\0';
  };
  add(keys, "");
  add(words, "Content-Type: text/plain; charset=UTF-8\n");
  for (std::size_t i = 0; i < kWords; ++i) {
    add(keys, keyAt(i));
    add(words, wordAt(i));
  }
  std::string file;
  for (const std::size_t number : {std::size_t{0x950412DE}, std::size_t{0}, kWords + 1,
                                   std::size_t{28}, 28 + 8 * (kWords + 1), std::size_t{0}, begin}) {
    append(file, number);
  }
  return file + keys + words + texts;
}

/// A bundle and a catalogue with the same words, in a folder that goes with the process.
class Words {
 public:
  Words() {
    std::string pattern = std::filesystem::temp_directory_path() / "brindle-words-XXXXXX";
    root_ = ::mkdtemp(pattern.data());
    std::string table;
    for (std::size_t i = 0; i < kWords; ++i) {
      table += "\"" + keyAt(i) + "\" = \"" + wordAt(i) + "\";\n";
    }
    write("de.lproj/Localizable.strings", table);
    write("de/LC_MESSAGES/words.mo", catalogue());
    NSLocale::setPreferredLanguages({"de"_ns});
    // Any language but C: LANGUAGE chooses the catalogue.
    ::setenv("LANGUAGE", "de", 1);
    for (const char* locale : {"de_DE.UTF-8", "en_US.UTF-8", "C.UTF-8"}) {
      if (std::setlocale(LC_ALL, locale) != nullptr) break;
    }
    ::bindtextdomain("words", root_.c_str());
    ::textdomain("words");
    for (std::size_t i = 0; i < kKeys; ++i) {
      keys[i] = NSString(keyAt(i * 61));
      missing[i] = NSString(keyAt(i * 61 + kWords));
      plainKeys[i] = keyAt(i * 61);
    }
    bundle = NSBundle::bundleWithPath(NSString(root_));
    path = bundle->bundlePath();
  }
  Words(const Words&) = delete;
  Words& operator=(const Words&) = delete;
  ~Words() {
    std::error_code error;
    std::filesystem::remove_all(root_, error);
  }

  std::array<NSString, kKeys> keys;
  std::array<NSString, kKeys> missing;
  std::array<std::string, kKeys> plainKeys;
  NSBundle bundle;
  NSString path;

 private:
  void write(const std::string& name, const std::string& bytes) const {
    const std::filesystem::path file = std::filesystem::path(root_) / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
  }

  std::string root_;
};

Words& words() {
  static Words words;
  return words;
}

void lookUp(benchmark::State& state, const std::array<NSString, kKeys>& keys) {
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        words().bundle->localizedStringForKey(keys[i++ % kKeys], nullptr, nullptr).record());
  }
}
void word(benchmark::State& state) { lookUp(state, words().keys); }
void missingWord(benchmark::State& state) { lookUp(state, words().missing); }

void gettextWord(benchmark::State& state) {
  const std::string& first = words().plainKeys[0];
  if (first == ::gettext(first.c_str())) {
    state.SkipWithError("gettext has no locale to translate for");
    return;
  }
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(::gettext(words().plainKeys[i++ % kKeys].c_str()));
  }
}

void bundleByPath(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(NSBundle::bundleWithPath(words().path).record());
  }
}

void bundleByIdentifier(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(NSBundle::bundleWithIdentifier("org.example.None"_ns).record());
  }
}

void bundleByClass(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(NSBundle::bundleForClass(NSString::class_()).record());
  }
}

BENCHMARK(word)->Name("a word");
BENCHMARK(missingWord)->Name("a missing word");
BENCHMARK(gettextWord)->Name("gettext a word");
BENCHMARK(bundleByPath)->Name("a bundle by its path");
BENCHMARK(bundleByIdentifier)->Name("no bundle by an identifier");
BENCHMARK(bundleByClass)->Name("a bundle by a class");

}  // namespace
}  // namespace brindle

int main(int argc, char** argv) {
  return brindle::bench::runWithPeers(
      argc, argv, {"GNUstepBundles"},
      {{"a word", "GNUstep a word", 0.7},
       {"a word", "gettext a word", 1.3},
       {"a missing word", "GNUstep a word", 0.7},
       {"a missing word", "gettext a word", 1.3},
       {"a bundle by its path", "GNUstep a bundle by its path", 0.1},
       {"a bundle by a class", "GNUstep a bundle by a class", 1.0}});
}
