// The readers against the literal ones, on files that are cut, spoilt and read in part.

#include <gtest/gtest.h>

#include "formats/stl_files.h"
#include "oracles/literal_stl_read.h"
#include "support/interrupting_handler.h"
#include "support/random.h"
#include "support/validator.h"

namespace {

// Everything that a host can see of a read.
struct Account {
  int result = 0;
  std::string out, err;
  std::vector<std::string> messages;
  int polls = 0;
  std::vector<double> geometry;
  std::vector<int> elements;
  int node_count = 0;
};

template <class Reader>
Account account_of(int (Reader::*member)(int, int), const std::string& bytes, const ReadOptions& options, int stop_at) {
  Account account;
  trTriBlock mesh;
  if (options.append) mesh.set_node(2, giPoint3(1, 2, 3));
  const CapturedOutput out;
  testing::internal::CaptureStderr();
  {
    InterruptingHandler handler(stop_at);
    Reader reader(&mesh, stream_on(bytes), options.append, options.read_node_data);
    account.result = (reader.*member)(options.start, options.stop);
    account.messages = handler.messages;
    account.polls = handler.polls;
  }
  account.err = testing::internal::GetCapturedStderr();
  account.out = out.text();
  account.geometry = geometry_of(mesh);
  account.node_count = mesh.node_count();
  for (int e = 0; e < mesh.element_count(); ++e) {
    for (int k = 0; k < 3; ++k) account.elements.push_back(mesh.element(e)[k]);
  }
  EXPECT_TRUE(is_sound(mesh));
  return account;
}

void expect_same(const Account& own, const Account& literal) {
  EXPECT_EQ(own.result, literal.result);
  EXPECT_EQ(own.out, literal.out);
  EXPECT_EQ(own.err, literal.err);
  EXPECT_EQ(own.messages, literal.messages);
  EXPECT_EQ(own.polls, literal.polls);
  EXPECT_EQ(own.elements, literal.elements);
  EXPECT_EQ(own.node_count, literal.node_count);
  ASSERT_EQ(own.geometry.size(), literal.geometry.size());
  // As bits, apart from the payload of what is no number.
  for (std::size_t k = 0; k < own.geometry.size(); ++k) {
    const double a = own.geometry[k];
    const double b = literal.geometry[k];
    ASSERT_TRUE(std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0) << a << " and " << b;
  }
}

void compare_binary(const std::string& bytes, const ReadOptions& options = {}, int stop_at = 0) {
  expect_same(account_of(&trTriRead::read_stl, bytes, options, stop_at), account_of(&LiteralStlRead::read_stl, bytes, options, stop_at));
}

void compare_ascii(const std::string& text, const ReadOptions& options = {}, int stop_at = 0) {
  expect_same(account_of(&trTriRead::read_ast, text, options, stop_at), account_of(&LiteralStlRead::read_ast, text, options, stop_at));
}

ReadOptions random_options(Random& random) {
  ReadOptions options;
  if (random.one_in(2)) {
    options.start = random.between(-1, 5);
    options.stop = random.between(-1, 5);
  }
  options.append = random.below(2);
  options.read_node_data = random.below(2);
  return options;
}

// Text made of the words that matter, mostly in the order that makes facets.
std::string random_text(Random& random) {
  static const char* const sentence[] = {"facet", "vertex", "1 2 3", "vertex", "-4.5e1 5 .6", "vertex", "7 8 9", "endfacet"};
  static const char* const words[] = {"facet", "vertex", "endfacet", "solid", "FACET", "eNdFaCeT", "endloop", "12", "1e", "nan", "-inf", "0x1p3", "\v3",
                                      "facetendfacet", "."};
  static const char* const gaps[] = {" ", "\n", "\r\n", "\t", "  ", "\v", "", ","};
  std::string text;
  for (int k = random.between(5, 40), at = 0; k > 0; --k) {
    const bool is_odd = random.one_in(25);
    text += is_odd ? words[random.below(15)] : sentence[at++ % 8];
    text += random.one_in(30) ? gaps[random.below(8)] : gaps[random.below(5)];
    if (random.one_in(60)) text += std::string(static_cast<std::size_t>(random.between(90, 210)), 'w');
  }
  return text;
}

}  // namespace

TEST(StlOracle, BinaryCutAtEveryByte) {
  const std::string bytes = binary_stl(3);
  for (std::size_t length = 0; length <= bytes.size(); ++length) {
    SCOPED_TRACE(length);
    compare_binary(bytes.substr(0, length));
  }
}

TEST(StlOracle, AsciiCutAtEveryByte) {
  trTriBlock mesh;
  read_binary(mesh, binary_stl(2));
  const std::string text = written_ascii(mesh).bytes;
  ASSERT_GT(text.size(), 400u);
  for (std::size_t length = 0; length <= text.size(); ++length) {
    SCOPED_TRACE(length);
    compare_ascii(text.substr(0, length));
  }
}

// Chunks of facets are fetched at a time; the cut may fall anywhere in one.
TEST(StlOracle, BinaryFilesLongerThanAChunk) {
  const std::string bytes = binary_stl(2700);
  Random random(41);
  for (int k = 0; k < 12; ++k) {
    const auto cut = static_cast<std::size_t>(random.below(static_cast<int>(bytes.size())));
    SCOPED_TRACE(cut);
    ReadOptions options;
    options.start = random.between(1, 1500);
    options.stop = random.one_in(2) ? 0 : random.between(1200, 2700);
    compare_binary(k % 3 == 0 ? bytes : bytes.substr(0, cut), options, random.one_in(3) ? random.between(1, 2700) : 0);
  }
}

TEST(StlOracle, BinaryFilesWithRandomBytes) {
  Random random(42);
  for (int k = 0; k < 600; ++k) {
    SCOPED_TRACE(k);
    std::string bytes = binary_stl(4, static_cast<std::uint32_t>(random.between(0, 6)));
    bytes.resize(84 + static_cast<std::size_t>(random.below(201)));
    for (int spoilt = random.below(20); spoilt > 0; --spoilt) {
      bytes[84 + static_cast<std::size_t>(random.below(static_cast<int>(bytes.size()) - 83)) - (bytes.size() > 84 ? 0 : 1)] = static_cast<char>(random.below(256));
    }
    compare_binary(bytes, random_options(random), random.below(6));
    if (testing::Test::HasFailure()) return;
  }
}

TEST(StlOracle, AsciiFilesWithRandomWords) {
  Random random(43);
  int complete = 0;
  int failed = 0;
  int facets = 0;
  for (int k = 0; k < 3000; ++k) {
    const std::string text = random_text(random);
    SCOPED_TRACE(text);
    compare_ascii(text, random_options(random), random.one_in(4) ? random.between(1, 4) : 0);
    if (testing::Test::HasFailure()) return;
    trTriBlock mesh;
    ++(read_ascii(mesh, text).result ? complete : failed);
    facets += mesh.element_count() - 1;
  }
  EXPECT_GT(complete, 100);
  EXPECT_GT(failed, 1000);
  EXPECT_GT(facets, 2000);
}
