#include "formats/word_scanner.h"

#include <gtest/gtest.h>

#include "formats/stl_files.h"

namespace {

std::vector<std::string> words_of(const std::string& text) {
  std::FILE* file = stream_on(text);
  WordScanner scanner(file);
  std::vector<std::string> words;
  do {
    words.emplace_back(scanner.next_word());
  } while (!scanner.has_ended());
  std::fclose(file);
  return words;
}

std::string letters(int n) { return std::string(static_cast<std::size_t>(n), 'a'); }

}  // namespace

// Blank, tab, CR and LF separate; vertical tab, form feed and zero bytes are part of words.
TEST(WordScanner, SplitsAtBlanksTabsAndLineEnds) {
  EXPECT_EQ(words_of(" one\ttwo\r\nthree\rfour\n\n five"), (std::vector<std::string>{"one", "two", "three", "four", "five"}));
  EXPECT_EQ(words_of("one\vtwo\fthree four\n"), (std::vector<std::string>{"one\vtwo\fthree", "four", ""}));
  EXPECT_EQ(words_of(std::string("a\0b c", 5)), (std::vector<std::string>{std::string("a\0b", 3), "c"}));
  EXPECT_EQ(words_of(""), std::vector<std::string>{""});
  EXPECT_EQ(words_of(" \n\t "), std::vector<std::string>{""});
}

// Of a word of 100 characters or more the 100th is lost, and the next word begins behind it. When the 100th is a blank, that is lost.
TEST(WordScanner, CutsWordsAt99CharactersAndLosesThe100th) {
  struct Case {
    std::string text;
    std::vector<std::string> words;
  };
  const Case cases[] = {
      {letters(99) + " facet", {letters(99), "facet"}},
      {letters(99) + "facet", {letters(99), "acet"}},
      {letters(99) + "xfacet", {letters(99), "facet"}},
      {letters(99) + "x facet", {letters(99), "facet"}},
      {letters(99) + "  facet", {letters(99), "facet"}},
      {letters(99), {letters(99)}},
      {letters(100), {letters(99), ""}},
      {letters(101), {letters(99), "a"}},
      {letters(250), {letters(99), letters(99), letters(50)}},
  };
  for (const Case& c : cases) EXPECT_EQ(words_of(c.text), c.words) << c.text;
}

// The buffer's end may fall on any character of a word, its cut included.
TEST(WordScanner, WordsMayLieAcrossTheEndOfTheBuffer) {
  const int capacity = static_cast<int>(CharStream::capacity);
  for (int before = capacity - 130; before <= capacity + 5; ++before) {
    const std::string blanks(static_cast<std::size_t>(before), ' ');
    ASSERT_EQ(words_of(blanks + letters(99) + "xfacet vertex"), (std::vector<std::string>{letters(99), "facet", "vertex"})) << before;
  }
}

TEST(WordScanner, NumbersAndWordsTakeTurns) {
  const std::string text = "vertex 1.5abc -2\v\f 3,4";
  std::FILE* file = stream_on(text);
  WordScanner scanner(file);
  double number = 0.0;
  EXPECT_EQ(scanner.next_word(), "vertex");
  ASSERT_TRUE(scanner.next_number(number));
  EXPECT_EQ(number, 1.5);
  EXPECT_EQ(scanner.next_word(), "abc");
  ASSERT_TRUE(scanner.next_number(number));
  EXPECT_EQ(number, -2.0);
  ASSERT_TRUE(scanner.next_number(number)) << "vertical tab and form feed are white space before a number";
  EXPECT_EQ(number, 3.0);
  EXPECT_FALSE(scanner.next_number(number)) << "a comma is never a decimal point";
  std::fclose(file);
}
