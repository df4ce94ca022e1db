#include "Platform/Foundation/Internal/PreferredLanguages.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace brindle::internal {
namespace {

using Names = std::vector<std::string>;

class PreferredLanguagesTest : public testing::Test {
 protected:
  ~PreferredLanguagesTest() override {
    for (std::size_t i = 0; i < 4; ++i) set(kVariables[i], before_[i]);
  }
  PreferredLanguagesTest() {
    for (const char* variable : kVariables) {
      const char* value = std::getenv(variable);
      before_.emplace_back(value == nullptr ? "" : value);
      ::unsetenv(variable);
    }
  }
  static void set(const char* variable, const std::string& value) {
    ::setenv(variable, value.c_str(), 1);
  }

 private:
  static constexpr const char* kVariables[] = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"};
  Names before_;
};

TEST_F(PreferredLanguagesTest, LanguagesOfTheUser) {
  EXPECT_EQ(environmentLanguages(), Names{});
  set("LANG", "de_AT.UTF-8");
  EXPECT_EQ(environmentLanguages(), Names{"de-AT"});
  set("LC_MESSAGES", "fr_FR");
  EXPECT_EQ(environmentLanguages(), Names{"fr-FR"});
  set("LC_ALL", "");
  EXPECT_EQ(environmentLanguages(), Names{"fr-FR"});
  set("LANGUAGE", "pt_BR:pt::fr_FR");
  EXPECT_EQ(environmentLanguages(), (Names{"pt-BR", "pt", "fr-FR"}));
  set("LC_ALL", "C");
  EXPECT_EQ(environmentLanguages(), Names{});
}

TEST_F(PreferredLanguagesTest, TheEnvironmentIsAskedOnce) {
  set("LANG", "de_AT.UTF-8");
  setPreferredLanguages(std::nullopt);
  EXPECT_EQ(preferredLanguages().names, Names{"de-AT"});
  set("LANG", "fr_FR");
  EXPECT_EQ(preferredLanguages().names, Names{"de-AT"});
  setPreferredLanguages(std::nullopt);
  EXPECT_EQ(preferredLanguages().names, Names{"fr-FR"});
}

TEST_F(PreferredLanguagesTest, TheProgramMaySayOthers) {
  const unsigned long before = preferredLanguages().generation;
  setPreferredLanguages(Names{"nl", "en"});
  EXPECT_EQ(preferredLanguages().names, (Names{"nl", "en"}));
  EXPECT_NE(preferredLanguages().generation, before);
  EXPECT_EQ(languageGeneration(), preferredLanguages().generation);
  setPreferredLanguages(std::nullopt);
}

}  // namespace
}  // namespace brindle::internal
