// The native format: its layout to the byte, its blocks, its numbers.

#include <gtest/gtest.h>

#include "formats/bin_read.h"
#include "formats/format_files.h"
#include "formats/native_blocks.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

const std::string marker = "\x5e\x55\xe5\xee";

std::string header(const std::string& text = "MENDEX native file (format 1.2)") {
  std::string bytes = text;
  bytes.resize(80);
  return bytes;
}

std::string block(const std::string& tag, const std::string& payload) {
  return Bytes().text(marker + tag).put(static_cast<int>(payload.size())).text(payload);
}

const std::string term = block("TERM", "");

// Nodes 1 to 5 and elements (1, 2, 3) and (2, 3, 4), numbered 1 and 4.
std::string body() {
  Bytes bytes;
  bytes.put(5);
  for (int i = 1; i <= 5; ++i) bytes.put(i, i + 0.25, 0.0, -1.0 * i);
  return bytes.put(2).put(1, 1, 2, 3).put(4, 2, 3, 4);
}

std::vector<int> colours_of(const trTriBlock& mesh) {
  std::vector<int> colours;
  for (int e = 0; e < mesh.element_count(); ++e) colours.push_back(mesh.get_element_colour(e));
  return colours;
}

// The first attribute of each node that was ever given one, from node 1.
std::vector<double> attributes_of(const trTriBlock& mesh) {
  std::vector<double> values;
  for (int i = 1; i < mesh.node_count() && mesh.has_node_data(i); ++i) values.push_back(mesh.node_data(i).values[0]);
  return values;
}

}  // namespace

// Elements 2, 4 and 5 of six are there, in colours 8, 9, 9; nodes 3 of five is not.
TEST(NativeWrite, LayoutToTheByte) {
  trTriBlock mesh;
  for (const int i : {1, 2, 4, 5}) mesh.set_node(i, giPoint3(i, i + 0.5, -i));
  mesh.set_element(2, 1, 2, 4);
  mesh.set_element(4, 2, 5, 4);
  mesh.set_element(5, 5, 1, 2);
  mesh.set_node_data_size(1);
  mesh.node_data(2).values[0] = 7.5;
  mesh.set_element_colour(2, 8);
  mesh.set_element_colour(4, 9);
  mesh.set_element_colour(5, 9);

  Bytes plain;
  plain.text(header()).put(4);
  for (const int i : {1, 2, 4, 5}) plain.put(i, i + 0.0, i + 0.5, -i + 0.0);
  plain.put(3).put(2, 1, 2, 4).put(4, 2, 5, 4).put(5, 5, 1, 2);
  plain.text(block("NDTI", Bytes().put(std::uint16_t{1}).put(1, 0.0).put(2, 7.5).put(4, 0.0).put(5, 0.0)));
  plain.text(block("ECLI", Bytes().put(2, 9, 1, 8, 2))).text(term);
  EXPECT_TRUE(are_same(write_format(native_format, mesh).bytes, plain));
}

// Without attributes and colours the terminator follows the elements; coloured meshes without elements have no colour to list.
TEST(NativeWrite, BlocksWithoutContentAreNotWritten) {
  trTriBlock empty;
  EXPECT_TRUE(are_same(write_format(native_format, empty).bytes, header() + std::string(8, '\0') + term));
  BlockOf mesh(flat_sheet(1, 1));
  mesh.set_element_colour(1, 5);
  mesh.delete_element(1);
  mesh.delete_element(2);
  const std::string bytes = write_format(native_format, mesh).bytes;
  EXPECT_EQ(bytes.size(), 80u + 4 + 4 * 28 + 4 + 12);
}

TEST(NativeWrite, TheHeaderIsTheOnlyWriteThatIsChecked) {
  BlockOf mesh(flat_sheet(1, 1));
  testing::internal::CaptureStderr();
  trTriWrite(&mesh, nullptr, 1.0).write_native(0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error writing file header\n");
  EXPECT_EQ(write_to_full_disk(native_format, mesh, 100).result, 1);
}

TEST(NativeRead, VersionIsTheFirstTwoRunsOfDigits) {
  const struct {
    const char* header;
    int major, minor;
  } cases[] = {{"MENDEX native file (format 1.2)", 1, 2}, {"", 0, 0}, {"no digits", 0, 0}, {"7", 7, 0}, {"v12x34y56", 12, 34}, {"1 . 03", 1, 3}};
  for (const auto& c : cases) {
    const NativeVersion version = native_version_of(c.header);
    EXPECT_EQ(version.major, c.major) << c.header;
    EXPECT_EQ(version.minor, c.minor) << c.header;
  }
  EXPECT_TRUE(native_version_of("99999999999999999999.99999999999999999999").allows_unknown_blocks());
  EXPECT_FALSE(native_version_of("1.2").allows_unknown_blocks());
  EXPECT_FALSE(native_version_of("0.9").allows_unknown_blocks());
}

TEST(NativeRead, BlocksAndWhatIsWrongWithThem) {
  const std::string out_of_sync = " WARNING: File is corrupt. [Out of sync]\n";
  const std::string insufficient_nodes = " WARNING: File is corrupt. [insufficient data NDT block]\n";
  const std::string mismatch = " WARNING: File is corrupt. [size mismatch NDT block]\n";
  const std::string insufficient_colours = " WARNING: File is corrupt. [insufficient data ECLI block]\n";
  const std::string inconsistent = " WARNING: File is corrupt. [inconsistant byte count ECLI block]\n";
  const auto sized = [](const std::string& tag, int bytes, const std::string& payload = "") -> std::string {
    return Bytes().text(marker + tag).put(bytes).text(payload);
  };
  const auto attributes = [](std::uint16_t size) { return std::string(Bytes().put(size)); };
  const std::string too_many = Bytes().put(std::uint16_t{7}).put(3).put(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0);
  const struct {
    const char* what;
    std::string blocks, out;
    std::string version = "1.2";
  } cases[] = {
      {"the end", term, ""},
      {"no end", "", out_of_sync},
      {"marker only", marker, " WARNING: File is corrupt. [unknown block]\n"},
      {"wrong marker", "\x5e\x55\xe5\xef" "TERM" + std::string(4, '\0'), out_of_sync},
      {"end with data", sized("TERM", 4), " WARNING: File is corrupt. [Extra data on TERM code]\n"},
      {"end of negative size", sized("TERM", -1), " WARNING: File is corrupt. [Extra data on TERM code]\n"},
      {"text", block("TEST", "some text") + term, " TEST data found in file:\nsome text\n"},
      {"text with a zero", block("TEST", std::string("ab\0cd", 5)) + term, " TEST data found in file:\nab\n"},
      {"text beyond the end", sized("TEST", INT_MAX, "abc"), " TEST data found in file:\nabc\n" + out_of_sync},
      {"text of negative size", sized("TEST", -1), out_of_sync},
      {"unknown", block("XTRA", "12345678") + term, " WARNING: File is corrupt. [unknown block]\n"},
      {"unknown of a later version", block("XTRA", "12345678") + term, " WARNING: Ignoring unknown block [XTRA]\n", "1.3"},
      {"unknown beyond the end", sized("XTRA", INT_MAX, "1"), " WARNING: Ignoring unknown block [XTRA]\n" + out_of_sync, "2.0"},
      {"unknown of negative size", sized("XTRA", -12), out_of_sync, "1.3"},
      {"unknown NDT", block("NDTX", "") + term, " WARNING: File is corrupt. [unknown block]\n"},
      {"version 0.0", block("XTRA", ""), "", "0.0"},
      {"attributes cut", sized("NDTI", 1, "1"), insufficient_nodes},
      {"attributes of negative size", sized("NDTR", -1), insufficient_nodes},
      {"attributes not whole", block("NDTR", attributes(1) + "1234567") + term, mismatch},
      {"attributes of no size", block("NDTR", attributes(0) + "12345678") + term, mismatch},
      {"no attributes", block("NDTR", attributes(0)) + term, " New triangles have no node attributes.\n"},
      {"seven attributes", block("NDTI", too_many) + term, " Reading 5 attributes per node.\n"},
      {"numbers that no node has",
       block("NDTI", Bytes().put(std::uint16_t{1}).put(0, 1.0, -1, 1.0).put(6, 1.0).put(INT_MAX, 1.0).put(INT_MIN, 1.0)) + term,
       " Reading 1 attributes per node.\n"},
      {"attributes beyond the end", sized("NDTI", 2 + 12 * 100000000, attributes(1)), " Reading 1 attributes per node.\n" + out_of_sync},
      {"colours cut", sized("ECLI", 3, "123"), insufficient_colours},
      {"more colours than bytes", block("ECLI", Bytes().put(2, 5)) + term, insufficient_colours},
      {"no colours", block("ECLI", Bytes().put(0)) + term, inconsistent},
      {"fewer than no colours", block("ECLI", Bytes().put(INT_MIN, 5)) + term, inconsistent},
      {"all the colours there are", block("ECLI", Bytes().put(INT_MAX, 5)) + term, insufficient_colours},
      {"colours with too little", block("ECLI", Bytes().put(2, 5, 3, 6, 1, 2)) + term, inconsistent},
      {"colours of negative number", block("ECLI", Bytes().put(3, 5, -1, 6, 1, 7)) + term, inconsistent},
      {"colours beyond the end", sized("ECLI", 8 * 100000000, Bytes().put(100000000, 5)), inconsistent},
      {"elements beyond the end", sized("ECLI", 16 + 400000000, Bytes().put(2, 5, 100000000, 6)), inconsistent},
      {"colours of numbers that no element has", block("ECLI", Bytes().put(2, 5, 4, 6, 0, -1, INT_MAX, INT_MIN)) + term, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    trTriBlock mesh;
    InterruptingHandler handler;
    const ReadOutcome read = read_format(native_format, mesh, header("MENDEX " + c.version) + body() + c.blocks, {1, 0, 0, 1});
    EXPECT_EQ(read.out, " MENDEX " + c.version + "\n" + c.out);
    EXPECT_EQ(read.result, 1) << "the reader says only whether it was stopped";
    EXPECT_EQ(handler.messages.back(), "Finished reading file...") << "what is damaged ends the reading, and no more";
    EXPECT_EQ(mesh.valid_nodes(), 5);
    EXPECT_EQ(mesh.valid_elements(), 2);
    EXPECT_TRUE(is_sound(mesh));
  }
}

TEST(NativeRead, AttributesByNumberAndInOrder) {
  const auto read = [](const std::string& payload, const char* tag) {
    trTriBlock mesh;
    read_format(native_format, mesh, header() + body() + block(tag, payload) + term, {1, 0, 0, 1});
    return attributes_of(mesh);
  };
  EXPECT_EQ(read(Bytes().put(std::uint16_t{1}).put(4, 1.5, 2, 2.5, 2, 3.5), "NDTI"), (std::vector<double>{0.0, 3.5, 0.0, 1.5}));
  EXPECT_EQ(read(Bytes().put(std::uint16_t{2}).put(1.0, 0.0, 2.0, 0.0, 3.0, 0.0, 4.0, 0.0, 5.0, 0.0), "NDTR"),
            (std::vector<double>{1.0, 2.0, 3.0, 4.0, 5.0}));
  const std::string seven = Bytes().put(std::uint16_t{7}).put(2).put(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0).put(1).put(8.0, 9.0, 9.0, 9.0, 9.0, 9.0, 9.0);
  EXPECT_EQ(read(seven, "NDTI"), (std::vector<double>{8.0, 1.0})) << "values beyond the fifth are passed over";
}

// Numbers above the mesh's stand for elements of the mesh that a file numbered anew came from.
TEST(NativeRead, ColoursMayNameElementsThatTheMeshDoesNotHave) {
  trTriBlock mesh;
  read_format(native_format, mesh, header() + body() + block("ECLI", Bytes().put(2, 5, 2, 6, 1, 9)) + term);
  EXPECT_EQ(colours_of(mesh), (std::vector<int>{5, 6, -1, -1, -1}));
  EXPECT_EQ(mesh.get_element_colour(9), 6);
  EXPECT_EQ(mesh.get_element_colour(10), 5);
}

// Without a block of attributes, be it for damage, those of the mesh go.
TEST(NativeRead, AppendingAFileWithoutAttributesDeletesThoseOfTheMesh) {
  const std::string deleted = " Insufficient node data in new triangles.\n Node attributes have been deleted.\n";
  const struct {
    int attributes;
    std::string header, blocks, out;
  } cases[] = {{2, "x", term, deleted},  // of version 0.0, too
               {0, "x", term, ""},
               {2, "1.2", term, deleted},
               {2, "1.2", "", " WARNING: File is corrupt. [Out of sync]\n" + deleted}};
  for (const auto& c : cases) {
    BlockOf mesh(flat_sheet(1, 1));
    mesh.set_node_data_size(c.attributes);
    EXPECT_EQ(read_format(native_format, mesh, header(c.header) + body() + c.blocks, {1, 0, 1, 0}).out,
              " " + c.header + "\n" + c.out);
  }
}

// Appended nodes and elements get numbers of their own; attributes and colours go by the numbers in the file, and so land on what was
// there before.
TEST(NativeRead, AppendedAttributesAndColoursLandOnLowNumbers) {
  BlockOf mesh(flat_sheet(1, 1));
  mesh.set_node_data_size(1);
  for (int i = 1; i <= 4; ++i) mesh.node_data(i).values[0] = 9.0;
  mesh.set_element_colour(1, 3);
  mesh.set_element_colour(2, 4);
  const std::string blocks = block("NDTI", Bytes().put(std::uint16_t{1}).put(2, 2.5)) + block("ECLI", Bytes().put(2, 5, 1, 6, 1)) + term;
  const ReadOutcome read = read_format(native_format, mesh, header() + body() + blocks, {1, 0, 1, 0});
  EXPECT_EQ(read.out, " MENDEX native file (format 1.2)\n Preserving node data (1 attributes per node).\n");
  EXPECT_EQ(mesh.node_count(), 10);
  EXPECT_EQ(mesh.point(5).x, 1.25);
  EXPECT_EQ(mesh.element_count(), 5);
  EXPECT_EQ(mesh.element(4)[0], 6) << "file node 2 became node 6";
  EXPECT_EQ(attributes_of(mesh), (std::vector<double>{9.0, 2.5, 9.0, 9.0}));
  EXPECT_EQ(colours_of(mesh), (std::vector<int>{5, 6, 4, 5, 5}));
}

// Gaps stay; records that name no node, repeat one, or have a number below 1 or beyond all reason are dropped without a word.
TEST(NativeRead, RecordsThatAreNotUsed) {
  Bytes bytes;
  bytes.text(header()).put(6);
  for (const int i : {3, 1, 7, 0, -5, INT_MAX}) bytes.put(i, 1.0 * i, 0.0, 0.0);
  bytes.put(9).put(2, 1, 3, 7).put(3, 1, 2, 3).put(4, 1, 3, 3).put(5, 3, 7, 8).put(0, 1, 3, 7).put(-1, 1, 3, 7).put(INT_MAX, 1, 3, 7);
  bytes.put(6, INT_MIN, 1, 3).put(7, 7, 3, 1).text(term);
  trTriBlock mesh;
  EXPECT_EQ(read_format(native_format, mesh, bytes).out, " MENDEX native file (format 1.2)\n");
  EXPECT_EQ(mesh.node_count(), 8);
  EXPECT_EQ(mesh.valid_nodes(), 3);
  EXPECT_EQ(mesh.element_count(), 8);
  EXPECT_EQ(mesh.valid_elements(), 2);
  EXPECT_TRUE(is_sound(mesh));
}

// A record that repeats a node counts, in verbose blocks only; one that names a missing node does not.
TEST(NativeRead, RepeatedNodesCountInVerboseBlocks) {
  struct Reader : trTriRead {
    using trTriRead::trTriRead;
    int element(const std::string& record) {
      trBinRead in(stream_on(record));
      intcoPageArr map(12, 5, 10);
      map[1] = 1;
      const int result = read_native_element(in, map);
      std::fclose(in.file);
      return result;
    }
  };
  for (const int verbose : {0, 1}) {
    BlockOf mesh(flat_sheet(1, 1));
    mesh.verbose = verbose;
    Reader reader(&mesh, nullptr, 1, 0);
    EXPECT_EQ(reader.element(Bytes().put(1, 1, 1, 1)), verbose);
    EXPECT_EQ(reader.element(Bytes().put(1, 1, 1, 2)), 0);
    EXPECT_EQ(mesh.element_count(), 3);
  }
}

// A node record that was cut short keeps what of it there was, zeros for the rest.
TEST(NativeRead, TheRecordThatTheFileEndsIn) {
  const std::string whole = header() + body();
  trTriBlock mesh;
  const ReadOutcome read = read_format(native_format, mesh, whole.substr(0, 80 + 4 + 28 + 4 + 12));
  EXPECT_EQ(read.out, " MENDEX native file (format 1.2)\n WARNING: File is corrupt. [Out of sync]\n");
  EXPECT_EQ(mesh.node_count(), 3);
  EXPECT_EQ(mesh.point(2), giPoint3(2.25, 0.0, 0.0));
}

// Each text is handed to the translation hook by itself; a header of 80 characters without a zero is printed as a whole.
TEST(NativeRead, TextsPassTheHook) {
  const MarkingHook hook;
  trTriBlock mesh;
  InterruptingHandler handler;
  const std::string eighty = std::string(77, 'h') + "1.3";
  const std::string blocks = block("XTRA", "") + block("TEST", "t") + block("ECLI", Bytes().put(0)) + term;
  EXPECT_EQ(read_format(native_format, mesh, eighty + body() + blocks).out,
            " " + eighty + "\n< WARNING: Ignoring unknown block [XTRA<]\n< TEST data found in file:\nt\n"
            "< WARNING: File is corrupt. <[inconsistant byte count ECLI block]\n");
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"<Reading native file...", "<  5 nodes:     5", "<Processing 2 triangles:     2", "<Finished reading file..."}));
}
