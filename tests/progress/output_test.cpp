#include "progress/output.h"

#include <gtest/gtest.h>

#include <iostream>

#include "progress/message.h"
#include "support/comma_locale.h"

namespace {

// Asked for before main, when a host's global objects may want to print.
const std::ostream* const output_before_main = &tr_out();

const char* shout(const char*) { return "HELLO"; }
const char* know_nothing(const char*) { return nullptr; }

}  // namespace

TEST(Output, IsTheStandardOutputUntilItIsReplaced) {
  EXPECT_EQ(output_before_main, &std::cout);
  std::ostringstream stream;
  tr_set_output(&stream);
  EXPECT_EQ(&tr_out(), &stream);
  tr_out() << "text";
  tr_set_output(nullptr);
  EXPECT_EQ(&tr_out(), &std::cout);
  EXPECT_EQ(stream.str(), "text");
}

TEST(Output, TextsPassTheTranslationHookThatIsRegistered) {
  const char* const text = "hello";
  EXPECT_EQ(tr_brnknls(text), text);
  tr_set_brnknls_function(shout);
  EXPECT_STREQ(tr_brnknls(text), "HELLO");
  tr_set_brnknls_function(tr_dummy_brnknls);
  EXPECT_EQ(tr_brnknls(text), text);
  // A hook that has no answer must not make texts vanish: printing a null pointer would spoil the stream for good.
  tr_set_brnknls_function(know_nothing);
  EXPECT_EQ(tr_brnknls(text), text);
  tr_set_brnknls_function(nullptr);
  EXPECT_EQ(tr_brnknls(text), text);
}

// Texts and command files must read the same to a program whatever the user's locale: a decimal point, no grouping.
TEST(Output, FormatsNumbersAsInTheCLocale) {
  const CommaLocale locale;
  if (!locale.is_set()) GTEST_SKIP() << "no locale with a comma as decimal point is installed or can be made";
  EXPECT_EQ(format_text("%d %lf%s", 1234567, 0.5, " end"), "1234567 0.500000 end");
  EXPECT_EQ(format_text("%lf", 1.7976931348623157e308).size(), 316u);
  std::ostringstream stream;
  tr_set_output(&stream);
  print_text("%d of %lf\n", 7, -2.25);
  tr_set_output(nullptr);
  EXPECT_EQ(stream.str(), "7 of -2.250000\n");
  char text[32] = {};
  std::FILE* const file = std::tmpfile();
  write_text(file, "%lf %s", 1.5, "x");
  std::rewind(file);
  EXPECT_EQ(std::fread(text, 1, sizeof text - 1, file), 10u);
  std::fclose(file);
  EXPECT_STREQ(text, "1.500000 x");
}
