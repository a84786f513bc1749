// Triangle files: both layouts to the letter, and what is made of files that are not as they should be.

#include <gtest/gtest.h>

#include "formats/format_files.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

std::string joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// Lines 1 to 17 for that many vertices and triangles and a box from the origin to (2, 1, 0).
std::string head(const std::string& vertices, const std::string& triangles) {
  const std::string zeros = "             0.00000            0.00000            0.00000";
  return joined({" KARN 5.2 TRIANGLE BLOCK", " Written by libmendexlib", " *", "    1", "   @MNX        ", " MNX     ", " GREEN   ",
                 " Created by MENDEX program                                                       ",
                 "          1          0 " + vertices + " " + triangles + "          0",
                 "             0.00000            2.00000            0.00000            1.00000",
                 "             0.00000            0.00000           -1.00000            1.00000",
                 "             0.00000            0.00000           -1.00000            0.00000",
                 "             0.00000            1.00000            0.00000            1.00000",
                 "          0         0         0         0", zeros + "            0.00000", zeros + "            0.00000", zeros});
}

// Nodes (0, 0), (2, 0), (2, 1) and, as node 5, (0, 1); elements (1, 2, 3) and, as element 3, (3, 5, 1).
void make_rectangle(trTriBlock& mesh) {
  mesh.set_node(1, giPoint3(0.0, 0.0, 0.0));
  mesh.set_node(2, giPoint3(2.0, 0.0, 0.0));
  mesh.set_node(3, giPoint3(2.0, 1.0, 0.0));
  mesh.set_node(5, giPoint3(0.0, 1.0, 0.0));
  mesh.set_element(1, 1, 2, 3);
  mesh.set_element(3, 3, 5, 1);
}

// A file of blocks, each of which is given by its lines from the counts on; the lines that do not matter are filled in.
std::string file_of(const std::vector<std::vector<std::string>>& blocks, const std::string& count = "") {
  std::string text = " any\n words\n *\n" + (count.empty() ? std::to_string(blocks.size()) : count) + "\n";
  for (std::size_t names = 0; names < (blocks.size() + 4) / 5; ++names) text += " names\n";
  for (const auto& lines : blocks) text += " name\n colour\n description\n" + lines[0] + "\n 1\n 2\n 3\n 4\n 5\n 6\n 7\n 8\n" + joined({lines.begin() + 1, lines.end()});
  return text;
}

const std::vector<std::string> plain_block{" 1 0 3 1 0", " 0 0 0 1", " 2 3 4 5", " 1 0 0 1", " 2 3 4 5", " 0 1 0 1", " 2 3 4 5", " 1 2 3"};

}  // namespace

TEST(TriangleWrite, LayoutsToTheLetter) {
  trTriBlock mesh;
  make_rectangle(mesh);
  const auto vertex = [](const char* x, const char* y) {
    return "             " + std::string(x) + "            " + y + "            0.00000            0.00000\n" +
           "             0.00000            1.00000            0.00000            0.00000\n";
  };
  const std::string first = vertex("0.00000", "0.00000") + vertex("2.00000", "0.00000") + vertex("2.00000", "1.00000");
  EXPECT_TRUE(are_same(write_format(flat_triangle_format, mesh).bytes,
                       head("         6", "         2") + first + vertex("2.00000", "1.00000") +
                           vertex("0.00000", "1.00000") + vertex("0.00000", "0.00000") +
                           "                1               2               3\n"
                           "                4               5               6\n"));
  EXPECT_TRUE(are_same(write_format(smooth_triangle_format, mesh).bytes,
                       head("         4", "         2") + first + vertex("0.00000", "1.00000") +
                           "                1               2               3\n"
                           "                3               4               1\n"));
}

// Two attributes are the surface parameters; of five the last two are; others are not written. From three attributes on the first three
// stand for the normals of a smooth file, and its opening message says so. The closing texts of the layouts differ.
TEST(TriangleWrite, AttributesBecomeNormalsAndSurfaceParameters) {
  for (int size = 0; size <= 5; ++size) {
    SCOPED_TRACE(size);
    trTriBlock mesh;
    make_rectangle(mesh);
    mesh.set_node_data_size(size);
    for (const int i : {1, 2, 3, 5}) {
      for (int k = 0; k < size; ++k) mesh.node_data(i).values[k] = 10.0 * i + k;
    }
    for (const Format* format : {&flat_triangle_format, &smooth_triangle_format}) {
      const bool is_flat = format == &flat_triangle_format;
      InterruptingHandler handler;
      const std::string text = write_format(*format, mesh).bytes;
      trTriBlock again;
      read_format(*format, again, text, {1, 0, 0, 1});
      const double* values = again.node_data(2).values;
      const bool has_normals = !is_flat && size >= 3;
      EXPECT_EQ(std::vector<double>(values, values + 3), has_normals ? (std::vector<double>{20, 21, 22}) : (std::vector<double>{0, 0, 1}));
      const int first_parameter = size == 2 ? 20 : 23;
      EXPECT_EQ(values[3], size == 2 || size == 5 ? first_parameter : 0);
      EXPECT_EQ(values[4], size == 2 || size == 5 ? first_parameter + 1 : 0);
      const char* smooth_text = has_normals ? "Writing triangle file (normal format)..." : "Writing triangle file (smooth format)...";
      EXPECT_EQ(handler.messages[0], is_flat ? "Writing triangle file (flat format)..." : smooth_text);
      const std::string closing = is_flat ? "Finished writing triangle file (flat format)..." : "Finished writing triangle file";
      EXPECT_TRUE(std::count(handler.messages.begin(), handler.messages.end(), closing) == 1);
    }
  }
}

// A cross vector of at most 0.0001 counts as none: small triangles get the z axis.
TEST(TriangleWrite, FlatNormalsOfSmallTrianglesAreTheZAxis) {
  for (const double edge : {0.009, 0.011}) {
    trTriBlock mesh, again;
    mesh.set_node(1, giPoint3());
    mesh.set_node(2, giPoint3(0.0, edge, 0.0));
    mesh.set_node(3, giPoint3(0.0, 0.0, edge));
    mesh.set_element(1, 1, 2, 3);
    read_format(flat_triangle_format, again, write_format(flat_triangle_format, mesh).bytes, {1, 0, 0, 1});
    EXPECT_EQ(again.node_data(1).values[edge > 0.01 ? 0 : 2], 1.0) << edge;
  }
}

TEST(TriangleWrite, AHeaderThatIsNotTakenFailsWithoutAWord) {
  trTriBlock mesh;
  make_rectangle(mesh);
  const CapturedOutput out;
  for (const Format* format : {&flat_triangle_format, &smooth_triangle_format}) {
    trTriWrite writer(&mesh, nullptr, 1.0);
    EXPECT_EQ(format->write(writer, 0), 0);
  }
  EXPECT_EQ(write_to_full_disk(flat_triangle_format, mesh, 1500).result, 1) << "data lines are not checked";
  EXPECT_EQ(out.text(), "");
}

// Behind the count of blocks there is a line of names for every five.
TEST(TriangleRead, BlocksFollowOneAnotherAndReportTheirShare) {
  trTriBlock mesh;
  const MarkingHook hook;
  InterruptingHandler handler;
  const std::string text = file_of(std::vector<std::vector<std::string>>(8, plain_block));
  EXPECT_EQ(read_format(flat_triangle_format, mesh, text, {1, 0, 0, 0}).out, "< Ignoring node atrributes.\n");
  EXPECT_EQ(mesh.node_data_size(), 0);
  EXPECT_EQ(mesh.element(8)[0], 22);
  EXPECT_TRUE(is_sound(mesh));
  std::vector<std::string> messages{"<Reading triangle file..."};
  std::vector<double> percents{0.0};
  for (int b = 0; b < 8; ++b) {
    const std::string share = "<Triangle blocks    " + std::to_string(b) + "/8";
    messages.insert(messages.end(), {share + " Nodes     0/3", share + " Triangles     0/1",
                                     "<Triangle blocks    " + std::to_string(b + 1) + "/8"});
    percents.insert(percents.end(), {b * 100.0 / 8, b * 100.0 / 8, (b + 1) * 100.0 / 8});
  }
  messages.push_back("<Finished reading triangle file...");
  percents.push_back(100.0);
  EXPECT_EQ(handler.messages, messages);
  EXPECT_EQ(handler.percents, percents);
}

// Values that a line lacks are those of the line before; triangles that repeat a vertex, or name none of their block, leave a gap.
TEST(TriangleRead, LinesThatAreNotAsTheyShouldBe) {
  using Lines = std::vector<std::string>;
  const Lines vertices{" 0 0 0 1", " 2 3 4 5", " 1 0 0 1", " 2 3 4 5", " 0 1 0 1", " 2 3 4 5"};
  const auto block = [&](const std::string& counts, Lines points, const Lines& triangles) {
    points.insert(points.begin(), counts);
    points.insert(points.end(), triangles.begin(), triangles.end());
    return points;
  };
  const struct {
    const char* what;
    std::string text;
    int nodes, elements, valid;
    std::vector<int> last_element;
  } cases[] = {
      {"repeats a vertex", file_of({block(" 1 0 3 3", vertices, {" 1 2 3", " 1 2 2", " 3 2 1"})}), 3, 3, 2, {3, 2, 1}},
      {"ends in a gap", file_of({block(" 1 0 3 2", vertices, {" 1 2 3", " 1 2 2"})}), 3, 1, 1, {1, 2, 3}},
      {"names strange vertices", file_of({block(" 1 0 3 5", vertices, {" 0 1 2", " 4 1 2", " -1 1 2", " 2147483648 1 2", " 1 3 2"})}), 3, 5, 1, {1, 3, 2}},
      {"names vertices of the block before", file_of({plain_block, block(" 1 0 0 1", {}, {" 1 2 3"})}), 3, 1, 1, {1, 2, 3}},
      {"keeps a corner", file_of({block(" 1 0 3 2", vertices, {" 3 2 1", " 1 3"})}), 3, 1, 1, {3, 2, 1}},
      {"has words", file_of({block(" 1 0 3 2", vertices, {" 3 2 1", " x y z"})}), 3, 2, 2, {3, 2, 1}},
      {"has no counts", file_of({plain_block, block(" none", vertices, {" 3 1 2"})}), 6, 2, 2, {6, 4, 5}},
      {"has no third count", file_of({block(" 1 0 x", {}, {})}), 0, 0, 0, {}},
      {"has negative counts", file_of({block(" 1 0 -3 -2147483648", {}, {})}), 0, 0, 0, {}},
      {"ends early", file_of({block(" 1 0 3 3", vertices, {" 1 2 3"})}), 3, 3, 3, {1, 2, 3}},
      {"ends before its last block", file_of({plain_block}, "2"), 3, 1, 1, {1, 2, 3}},
      {"has no blocks", file_of({plain_block}, "0"), 0, 0, 0, {}},
      {"has fewer than no blocks", file_of({plain_block}, "-2147483648"), 0, 0, 0, {}},
      {"has all the blocks there are", file_of({plain_block}, "2147483647"), 0, 0, 0, {}},
      {"has no star", " KARN\n\n 1 * 2\n", 0, 0, 0, {}},
      {"is empty", "", 0, 0, 0, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    trTriBlock mesh;
    InterruptingHandler handler;
    EXPECT_EQ(read_format(flat_triangle_format, mesh, c.text).result, 1);
    EXPECT_EQ(handler.messages.back(), "Finished reading triangle file...");
    EXPECT_EQ(mesh.node_count() - 1, c.nodes);
    EXPECT_EQ(mesh.element_count() - 1, c.elements);
    EXPECT_EQ(mesh.valid_elements(), c.valid);
    EXPECT_TRUE(is_sound(mesh));
    if (c.last_element.empty()) continue;
    const trElement& last = mesh.element(mesh.element_count() - 1);
    EXPECT_EQ((std::vector<int>{last[0], last[1], last[2]}), c.last_element);
  }
}

TEST(TriangleRead, AVertexThatLacksValuesRepeatsThem) {
  trTriBlock mesh;
  read_format(flat_triangle_format, mesh, file_of({{" 1 0 3 0", " 1 2 3 4", " 5 6 7 8", " 10 x", "", "nan inf 1e400 -1e-400", " 0x10 1e"}}), {1, 0, 0, 1});
  EXPECT_EQ(mesh.point(2), giPoint3(10.0, 2.0, 3.0));
  EXPECT_EQ(mesh.node_data(2).values[4], 8.0);
  EXPECT_TRUE(std::isnan(mesh.point(3).x));
  EXPECT_EQ(mesh.point(3).y, std::numeric_limits<double>::infinity());
  EXPECT_EQ(mesh.node_data(3).values[1], 16.0);
  EXPECT_EQ(mesh.node_data(3).values[2], 6.0);
}

// A line is 99 characters; what goes beyond is the next line.
TEST(TriangleRead, LongLinesAreSeveral) {
  trTriBlock mesh;
  const std::string first = " 1 2 3" + std::string(93, ' ') + " 4\n";
  read_format(flat_triangle_format, mesh, file_of({{" 1 0 1 0", first, " 5 6 7 8"}}), {1, 0, 0, 1});
  const double* values = mesh.node_data(1).values;
  EXPECT_EQ(std::vector<double>(values, values + 5), (std::vector<double>{0, 4, 0, 0, 0}));
}

TEST(TriangleRead, AppendingKeepsTheAttributesThatBothHave) {
  for (const int size : {0, 2, 5}) {
    BlockOf mesh(flat_sheet(1, 1));
    mesh.set_node_data_size(size);
    InterruptingHandler handler;
    const ReadOutcome read = read_format(flat_triangle_format, mesh, file_of({plain_block}), {1, 0, 1, 0});
    EXPECT_EQ(handler.messages.front(), "Appending triangle file...");
    EXPECT_EQ(read.out, size == 5 ? " Preserving node data (5 attributes per node).\n"
                                  : " Ignoring " + std::to_string(5 - size) + " additional attributes per node.\n");
    EXPECT_EQ(mesh.node_data_size(), size);
    EXPECT_EQ(mesh.element(3)[2], 7);
    EXPECT_EQ(size != 0 && mesh.node_data(5).values[1] == 2.0, size != 0);
    EXPECT_TRUE(is_sound(mesh));
  }
}
