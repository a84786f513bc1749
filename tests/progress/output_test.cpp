#include "progress/output.h"

#include <gtest/gtest.h>

#include <iostream>

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
