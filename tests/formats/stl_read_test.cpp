// Reading STL: the readers against the literal ones, on files that are cut, spoilt and read in part; and what a host
// sees of a read.

#include <gtest/gtest.h>

#include "formats/format_files.h"
#include "oracles/literal_stl_read.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/random.h"
#include "support/validator.h"

namespace {

// Everything that a host can see of a read.
template <class Reader>
std::string account_of(int (Reader::*member)(int, int), const std::string& bytes, const ReadOptions& options,
                       int stop_at) {
  trTriBlock mesh;
  if (options.append) mesh.set_node(2, giPoint3(1, 2, 3));
  const CapturedOutput out;
  std::ostringstream account;
  testing::internal::CaptureStderr();
  {
    InterruptingHandler handler(stop_at);
    Reader reader(&mesh, stream_on(bytes), options.append, options.read_node_data);
    account << (reader.*member)(options.start, options.stop) << '\n';
    for (const std::string& message : handler.messages) account << message << '\n';
    for (const double percent : handler.percents) account << percent << " % ";
    account << handler.polls << " polls\n";
  }
  account << testing::internal::GetCapturedStderr() << out.text() << content_of(mesh);
  EXPECT_TRUE(is_sound(mesh));
  return account.str();
}

void compare_binary(const std::string& bytes, const ReadOptions& options = {}, int stop_at = 0) {
  EXPECT_TRUE(are_same(account_of(&trTriRead::read_stl, bytes, options, stop_at),
                       account_of(&LiteralStlRead::read_stl, bytes, options, stop_at)));
}

void compare_ascii(const std::string& text, const ReadOptions& options = {}, int stop_at = 0) {
  EXPECT_TRUE(are_same(account_of(&trTriRead::read_ast, text, options, stop_at),
                       account_of(&LiteralStlRead::read_ast, text, options, stop_at)));
}

ReadOptions random_options(Random& random) {
  ReadOptions options;
  if (random.one_in(2)) {
    const int extreme = random.one_in(2) ? INT_MAX : INT_MIN;
    options.start = random.one_in(16) ? extreme : random.between(-1, 5);
    options.stop = random.one_in(16) ? extreme : random.between(-1, 5);
  }
  options.append = random.below(2);
  options.read_node_data = random.below(2);
  return options;
}

// Text made of the words that matter, mostly in the order that makes facets.
std::string random_text(Random& random) {
  static const char* const sentence[] = {"facet",       "vertex", "1 2 3", "vertex",
                                         "-4.5e1 5 .6", "vertex", "7 8 9", "endfacet"};
  static const char* const words[] = {"facet", "vertex", "endfacet", "solid", "FACET", "eNdFaCeT",      "endloop", "12",
                                      "1e",    "nan",    "-inf",     "0x1p3", "\v3",   "facetendfacet", "."};
  static const char* const gaps[] = {" ", "\n", "\r\n", "\t", "  ", "\v", "", ",", "\f"};
  std::string text;
  for (int k = random.between(5, 40), at = 0; k > 0; --k) {
    const bool is_odd = random.one_in(25);
    text += is_odd ? words[random.below(15)] : sentence[at++ % 8];
    text += random.one_in(30) ? gaps[random.below(9)] : gaps[random.below(5)];
    if (random.one_in(60)) text += std::string(static_cast<std::size_t>(random.between(90, 210)), 'w');
    if (random.one_in(200)) text += '\0';
  }
  return text;
}

class OpenReader : public trTriRead {
 public:
  OpenReader(trTriBlock* mesh_in, int append_in, int read_node_data_in)
      : trTriRead(mesh_in, nullptr, append_in, read_node_data_in) {}
  using trTriRead::reset_node_data_size;
};

}  // namespace

// Up to the count nothing is touched; behind it the facets that are whole are stored, and of the one that is cut the
// corners that are whole, as nodes without an element.
TEST(StlOracle, CutAtEveryByte) {
  const std::string bytes = binary_stl(3);
  for (std::size_t length = 0; length <= bytes.size(); ++length) {
    SCOPED_TRACE(length);
    compare_binary(bytes.substr(0, length));
  }
  trTriBlock mesh;
  read_binary(mesh, binary_stl(2));
  const std::string text = written_ascii(mesh).bytes;
  for (std::size_t length = 0; length <= text.size(); ++length) {
    SCOPED_TRACE(length);
    compare_ascii(text.substr(0, length));
  }
}

// Chunks of facets are fetched at a time; the cut may fall anywhere in one. Every thousandth facet is reported.
TEST(StlOracle, FilesLongerThanAChunk) {
  const std::string bytes = binary_stl(2700);
  Random random(41);
  for (int k = 0; k < 12; ++k) {
    const auto cut = static_cast<std::size_t>(random.below(static_cast<int>(bytes.size())));
    SCOPED_TRACE(cut);
    ReadOptions options;
    options.start = random.between(1, 1500);
    options.stop = random.one_in(2) ? 0 : random.between(1200, 2700);
    const int stop_at = random.one_in(3) ? random.between(1, 2700) : 0;
    compare_binary(k % 3 == 0 ? bytes : bytes.substr(0, cut), options, stop_at);
  }
  compare_ascii(ascii_stl(2001));
}

TEST(StlOracle, BinaryFilesWithRandomBytes) {
  Random random(42);
  for (int k = 0; k < 600; ++k) {
    SCOPED_TRACE(k);
    std::string bytes = binary_stl(4, static_cast<std::uint32_t>(random.between(0, 6)));
    bytes.resize(84 + static_cast<std::size_t>(random.below(201)));
    for (int spoilt = bytes.size() == 84 ? 0 : random.below(20); spoilt > 0; --spoilt) {
      const int at = random.below(static_cast<int>(bytes.size()) - 84);
      bytes[84 + static_cast<std::size_t>(at)] = static_cast<char>(random.below(256));
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

// Every combination of what the mesh has, what the file carries and what is wanted.
TEST(NodeDataSize, IsReconciledWithTheFile) {
  struct Case {
    int append, wanted, in_mesh, in_file;
    int result;
    const char* text;
  };
  const Case cases[] = {
      {1, 0, 0, 0, 0, ""},
      {1, 0, 2, 2, 2, " Preserving node data (2 attributes per node).\n"},
      {1, 1, 3, 1, 1, " Insufficient node data in new triangles.\n There are now only 1 attributes per node.\n"},
      {1, 0, 3, 0, 0, " Insufficient node data in new triangles.\n Node attributes have been deleted.\n"},
      {1, 1, 1, 4, 1, " Ignoring 3 additional attributes per node.\n"},
      {1, 1, 0, 4, 0, " Ignoring 4 additional attributes per node.\n"},
      {0, 1, 0, 0, 0, " New triangles have no node attributes.\n"},
      {0, 1, 2, 0, 2, " New triangles have no node attributes.\n"},
      {0, 1, 0, 3, 3, " Reading 3 attributes per node.\n"},
      {0, 1, 5, 3, 3, " Reading 3 attributes per node.\n"},
      {0, 0, 0, 0, 0, ""},
      {0, 0, 0, 3, 0, " Ignoring node atrributes.\n"},  // the doubled letter is part of the text
      {0, 0, 2, 3, 2, " Ignoring node atrributes.\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "append " << c.append << " wanted " << c.wanted << " mesh " << c.in_mesh
                                    << " file " << c.in_file);
    trTriBlock mesh;
    mesh.set_node_data_size(c.in_mesh);
    const CapturedOutput out;
    OpenReader reader(&mesh, c.append, c.wanted);
    EXPECT_EQ(reader.reset_node_data_size(c.in_file), c.result);
    EXPECT_EQ(mesh.node_data_size(), c.result);
    EXPECT_EQ(out.text(), c.text);
  }
}

// Appended triangles carry no attributes, so the mesh keeps none. They go even when nothing can be read.
TEST(StlRead, AppendingDeletesNodeAttributes) {
  const std::string told = " Insufficient node data in new triangles.\n Node attributes have been deleted.\n";
  for (const std::string& bytes : {binary_stl(1), std::string("short")}) {
    for (const Format* format : {&stl_format, &ascii_stl_format}) {
      trTriBlock mesh;
      mesh.set_node(1, giPoint3());
      mesh.set_node_data_size(2);
      mesh.undup_tol = 0.5;
      mesh.force_changed_status(0);
      EXPECT_EQ(read_format(*format, mesh, bytes, {1, 0, 1, 0}).out.substr(0, told.size()), told);
      EXPECT_EQ(mesh.node_data_size(), 0);
      EXPECT_EQ(mesh.get_element_colour(1), NO_COLOUR) << "attribute words are no colours";
      if (bytes.size() > 80) {
        EXPECT_EQ(mesh.undup_tol, 0.0);
        EXPECT_EQ(mesh.changed, 1);
      }
      EXPECT_EQ(mesh.node(1).invalid, 0);
    }
  }
}

TEST(StlRead, EchoesAtMostTheEightyCharactersOfTheHeader) {
  const std::string full(80, 'h');
  const std::pair<std::string, std::string> cases[] = {
      {full, " " + full + "\n"}, {"", " \n"}, {std::string("ab\0cd", 5), " ab\n"}, {"100% of %s", " 100% of %s\n"}};
  for (const auto& [header, out] : cases) {
    trTriBlock mesh;
    EXPECT_EQ(read_binary(mesh, binary_stl(1, 1, header)).out, out);
  }
}

// Nothing may be allocated, reported or read in proportion to what the count claims.
TEST(StlRead, ACountBeyondTheFileEndsAtOnce) {
  for (const std::uint32_t count : {20000000u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
    InterruptingHandler handler;
    trTriBlock mesh;
    const ReadOutcome read = read_binary(mesh, binary_stl(2, count));
    EXPECT_EQ(read.result, 0);
    EXPECT_EQ(read.out, " sample\n** Error reading element 3 **\n");
    EXPECT_EQ(handler.polls, 3);
    EXPECT_EQ(mesh.element_count(), 3);
  }
}

TEST(StlRead, EveryTextIsTranslated) {
  const MarkingHook hook;
  InterruptingHandler handler;
  trTriBlock mesh;
  mesh.set_node_data_size(1);
  EXPECT_EQ(read_binary(mesh, binary_stl(1, 2), {1, 0, 1, 0}).out,
            "< Insufficient node data in new triangles.\n< Node attributes have been deleted.\n sample\n"
            "<** Error reading element 2< **\n");
  EXPECT_EQ(handler.messages.front(), "<Appending STL file...");
  EXPECT_EQ(handler.messages.back(), "<Finished reading STL file...");
  EXPECT_EQ(read_binary(mesh, "").err, "<Error reading file header data\n");
  EXPECT_EQ(read_binary(mesh, std::string(80, 'h')).err, "<Error reading facet count\n");
  handler.messages.clear();
  EXPECT_EQ(read_ascii(mesh, "facet facet").out,
            "<*** Error: expected 'vertex<' but found 'facet<' ***\n<*** Error: problem reading facet 1< ***\n");
  EXPECT_EQ(read_ascii(mesh, "facet").out,
            "<*** Error: <unexpected end of file< ***\n<*** Error: problem reading facet 1< ***\n");
  EXPECT_EQ(read_ascii(mesh, "facet vertex 1 x").out,
            "<*** Error: <problem reading vertex coordinates< ***\n<*** Error: problem reading facet 1< ***\n");
  EXPECT_EQ(handler.messages.front(), "<Reading ASCII STL file ...");
  EXPECT_EQ(handler.messages.back(), "<Finished reading ASCII STL file");
}
