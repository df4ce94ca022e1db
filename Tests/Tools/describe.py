"""`brindle describe`: the words of every language, and the languages' own grammar beside them."""

import sys

sys.dont_write_bytecode = True

from support.checks import answer, equal, explains, finish, parsed, refuses


def phrases(*words, **environment):
    row = parsed("describe", *words, "--json", **environment)
    return row.get("phrase"), row.get("numeric"), row.get("everyday")


# --- Amounts ---

equal(answer("describe", "-3", "weeks"),
      "phrase    3 weeks ago\nnumeric   3 weeks ago\neveryday  3 weeks ago\n", "as text")
equal(parsed("describe", "1", "day", "--json"),
      {"offset": 1, "unit": "day", "phrase": "1 day from now", "numeric": "in 1 day",
       "everyday": "tomorrow"}, "as JSON")
for words in (["-3 weeks"], ["-3week"], ["-3", "week"]):
    equal(phrases(*words)[0], "3 weeks ago", str(words))
equal(phrases("0 quarters"), ("this quarter", "in 0 quarters", "this quarter"), "no offset")
equal(phrases("4294967297", "days"),
      ("1 day from now", "in 4,294,967,297 days", "in 4,294,967,297 days"), "more than 32 bits")
equal(phrases("-9223372036854775808", "days"),
      ("today", "9,223,372,036,854,775,808 days ago", "9,223,372,036,854,775,808 days ago"),
      "the least offset")

# --- Languages ---

for locale, five, direction in (
        ("en", "5 weeks ago", "5 weeks from now"), ("de", "vor 5 Wochen", "in 5 Wochen"),
        ("fr", "il y a 5 semaines", "dans 5 semaines"),
        ("es", "hace 5 semanas", "dentro de 5 semanas"),
        ("it", "5 settimane fa", "5 settimane da oggi"),
        ("pt", "há 5 semanas", "dentro de 5 semanas"), ("pt-BR", "há 5 semanas", "em 5 semanas"),
        ("nl", "5 weken geleden", "5 weken vanaf nu"), ("sv", "5 veckor sedan", "5 veckor från nu"),
        ("da", "5 uger siden", "5 uger fra nu"), ("nb", "5 uker siden", "5 uker fra nå"),
        ("fi", "5 viikkoa sitten", "5 viikkoa tästä eteenpäin"),
        ("pl", "5 tygodni temu", "5 tygodni od teraz"),
        ("cs", "5 týdnů zpět", "5 týdnů dopředu"), ("ru", "5 недель назад", "5 недель вперёд"),
        ("uk", "5 тижнів тому", "5 тижнів уперед"), ("tr", "5 hafta önce", "5 hafta sonra"),
        ("el", "πριν από 5 εβδομάδες", "σε 5 εβδομάδες"), ("he", "לפני 5 שבועות", "בעוד 5 שבועות"),
        ("ar", "قبل 5 أسابيع", "بعد 5 أسابيع"), ("fa", "5 هفته پیش", "5 هفته دیگر"),
        ("hi", "5 सप्ताह पहले", "5 सप्ताह बाद"), ("ja", "5週間前", "5週間後"),
        ("ko", "5주 전", "5주 후"), ("zh-Hans", "5周前", "5周后"), ("zh-Hant", "5 週前", "5 週後"),
        ("vi", "5 tuần trước", "5 tuần nữa"), ("id", "5 minggu yang lalu", "5 minggu lagi"),
        ("th", "5 สัปดาห์ที่แล้ว", "5 สัปดาห์ข้างหน้า")):
    equal(phrases("-5 weeks", "--locale", locale)[0], five, locale)
    equal(phrases("5 weeks", "--locale", locale)[0], direction, locale)

# Where one plural is not enough.
equal(phrases("-3 weeks", "--locale", "pl"),
      ("3 tygodni temu", "3 tygodnie temu", "3 tygodnie temu"), "three weeks in Polish")
equal(phrases("-2 days", "--locale", "de"), ("vor 2 Tagen", "vor 2 Tagen", "vorgestern"),
      "two days in German")

# The environment's language, and languages that nobody knows.
equal(phrases("1 day", LC_ALL="de_DE.UTF-8"), ("in 1 Tag", "in 1 Tag", "morgen"), "LC_ALL")
equal(phrases("1 day", LC_ALL="en_US.UTF-8", LANGUAGE="fr:de"),
      ("dans 1 jour", "dans 1 jour", "demain"), "LANGUAGE")
equal(phrases("1 day", "--locale", "de_AT"), ("in 1 Tag", "in 1 Tag", "morgen"), "a region")
equal(phrases("1 day", "--locale", "zh_TW")[0], "1 天後", "a region that tells the script")
for locale in ("xx", "../../etc", "A" * 100000, "%n%s%@"):
    equal(phrases("1 day", "--locale", locale), ("1 day from now", "in 1 day", "tomorrow"),
          locale[:20])

# --- Words that are wrong ---

for words in ([], ["week"], ["--", "week"], ["one", "week"], [""]):
    refuses("describe", *words, saying="wants a number and a unit")
refuses("describe", "3", saying="wants a unit behind the number")
refuses("describe", "3", "fortnights", saying="is no unit")
refuses("describe", "3", "weeks", "ago", saying="is no unit")
refuses("describe", "9223372036854775808", "days", saying="more than 64 bits")
refuses("describe", "3 weeks", "--locale", saying="--locale needs a value")
refuses("describe", "3 weeks", "--locale=", saying="wants a language")
refuses("describe", "3 weeks", "--bogus", saying="unknown option --bogus")
explains("describe", "--help", saying="usage: brindle describe AMOUNT")

finish()
