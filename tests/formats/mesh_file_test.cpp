// Mesh files: layout to the letter, sections, groups, lines that are passed over.

#include <gtest/gtest.h>

#include "formats/format_files.h"
#include "support/interrupting_handler.h"
#include "support/marking_hook.h"
#include "support/shapes.h"
#include "support/validator.h"

namespace {

const std::string head = "$INIT\nSDB,NEW,PFN,KARN\n$BULK\n";
const std::string nodes =
    "NODES,FORMAT=(I8,3F16.4)\n"
    "       1          0.0000          0.0000          0.0000\n"
    "       2          1.0000          0.0000          0.0000\n"
    "       4          0.0000          1.5000         -0.2500\n";
const std::string group = "DEFBLK=KARNSURFACE\nELEMENTS,TYPE=EN3PM  ,COLOUR=    1\n";
const std::string triangle = "       1       1       2       4\n";
const std::string end = "$TERM\n";

void make_triangle(trTriBlock& mesh) {
  mesh.set_node(1, giPoint3());
  mesh.set_node(2, giPoint3(1.0, 0.0, 0.0));
  mesh.set_node(4, giPoint3(0.0, 1.5, -0.25));
  mesh.set_element(1, 1, 2, 4);
}

std::vector<int> valid_elements(const trTriBlock& mesh) {
  std::vector<int> numbers;
  for (int e = 1; e < mesh.element_count(); ++e) {
    if (mesh.element(e).valid()) numbers.push_back(e);
  }
  return numbers;
}

}  // namespace

TEST(MeshFileWrite, PlainLayoutToTheLetter) {
  trTriBlock mesh, empty;
  make_triangle(mesh);
  EXPECT_TRUE(are_same(write_format(mesh_format, mesh).bytes, head + nodes + group + triangle + end));
  EXPECT_TRUE(are_same(write_format(mesh_format, empty).bytes, head + "NODES,FORMAT=(I8,3F16.4)\n" + group + end));
}

TEST(MeshFileRead, SectionsAndGroups) {
  const std::string plain = head + nodes;
  const std::string one = "ELEMENTS,TYPE=EN3PM  ,COLOUR=";
  const struct {
    const char* what;
    std::string text;
    std::vector<int> elements;
    int colour;  // of the last element
    std::string out = "";
  } cases[] = {
      {"colour", plain + one + "  123\n" + triangle, {1}, 123},
      {"colour after other words", plain + "ELEMENTS,TYPE=EN3PM  ,X=1,COLOUR= 5,OUR=6\n" + triangle, {1}, 5},
      {"no colour", plain + "ELEMENTS,TYPE=EN3PM  \n" + triangle, {1}, 1},
      {"no number", plain + one + "\n" + triangle, {1}, 1},
      {"colour beyond int", plain + one + "99999999999\n" + triangle, {1}, INT_MAX},
      {"negative colour", plain + one + "   -1\n" + triangle, {}, -1},
      {"other type", plain + "ELEMENTS,TYPE=EN4Q   ,COLOUR=    1\n" + triangle, {}, -1, " Ignoring non standard elements type '4Q   '\n"},
      {"other type after ours", plain + group + triangle + "ELEMENTS,TYPE=EN3PX  ,COLOUR=    1\n" + "       2       4       2       1\n", {1}, 1,
       " Ignoring non standard elements type '3PX  '\n"},
      {"header of 20 characters", plain + "ELEMENTS,TYPE=EN3PM\n" + triangle, {}, -1},
      {"EN elsewhere", plain + "ELEMENTS, TYPE=EN3PM  ,COLOUR=    1\n" + triangle, {}, -1},
      {"no header", plain + "DEFBLK=KARNSURFACE\n" + triangle, {}, -1},
      {"group goes on", plain + group + "DEFBLK=KARNSURFACE\n$TERM\n\nNODES,FORMAT=(I8,7F16.4)\n" + triangle, {1}, 1},
      {"header before the nodes", head + group + nodes + triangle, {}, -1},
      {"empty line among the nodes", head + nodes.substr(0, nodes.find("       4")) + "\n" + nodes.substr(nodes.find("       4")) + group + triangle, {}, -1},
      {"nodes without their line", head + nodes.substr(nodes.find('\n') + 1) + group + triangle, {}, -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    trTriBlock mesh;
    InterruptingHandler handler;
    const ReadOutcome read = read_format(mesh_format, mesh, c.text);
    EXPECT_EQ(read.result, 1);
    EXPECT_EQ(read.out, c.out);
    EXPECT_EQ(valid_elements(mesh), c.elements);
    EXPECT_EQ(c.elements.empty() ? c.colour : mesh.get_element_colour(c.elements.back()), c.colour);
    EXPECT_EQ(handler.messages, (std::vector<std::string>{"Reading Mesh file...", "Finished reading Mesh file..."}));
    EXPECT_TRUE(is_sound(mesh));
  }
}

// The digit before "F1", less the three coordinates; not below 0 and not above 4.
TEST(MeshFileRead, AttributesByTheFormatOfTheNodes) {
  const struct {
    const char* line;
    int size;
  } cases[] = {{"NODES,FORMAT=(I8,4F16.4)", 1}, {"NODES,FORMAT=(I8,7F16.4)", 4}, {"NODES,FORMAT=(I8,9F16.4)", 4}, {"NF1", 4}, {"N", 3},
               {"NODES,FORMAT=(I8,3F16.4)", 0}, {"NODES,FORMAT=(I8,2F16.4)", 0}, {"NODES,FORMAT=(I8, F16.4,7F16.4)", 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    trTriBlock mesh;
    const std::string values = "  1.5 2.5 3.5 4.5 5.5\n";
    const std::string continuation = c.size == 0 ? "" : values.substr(0, 1 + 4 * static_cast<std::size_t>(c.size)) + "\n";
    const ReadOutcome read = read_format(mesh_format, mesh, std::string(c.line) + "\n 2 1 2 3\n" + continuation + " 3 1 2 3\n", {1, 0, 0, 1});
    EXPECT_EQ(read.out, c.size == 0 ? " New triangles have no node attributes.\n" : " Reading " + std::to_string(c.size) + " attributes per node.\n");
    EXPECT_EQ(mesh.node_data_size(), c.size);
    EXPECT_EQ(mesh.valid_nodes(), 2);
    EXPECT_EQ(c.size == 0 ? 0.5 : mesh.node_data(2).values[c.size - 1], c.size + 0.5);
  }
}

// Without a line for the nodes three attributes are expected: the line behind each node is taken for them, and dropped, as it has four
// numbers. No message says what becomes of attributes.
TEST(MeshFileRead, WithoutTheirLineEverySecondNodeIsLost) {
  trTriBlock mesh;
  const ReadOutcome read = read_format(mesh_format, mesh, " 1 0 0 0\n 2 1 0 0\n 3 0 1 0\n 4 0 0 1\n 5 0 0 1\n", {1, 0, 0, 1});
  EXPECT_EQ(read.out, "");
  EXPECT_EQ(mesh.valid_nodes(), 3);
  EXPECT_EQ(mesh.node(2).invalid, 1);
}

TEST(MeshFileRead, LinesThatAreNotUsed) {
  const std::string bad_nodes = " 5 1 2\n x\n 0 1 2 3\n -7 1 2 3\n 2147483648 1 2 3\n";
  const std::string bad_elements =
      " 2 1 2\n 3 1 2 9\n 3 1 2 3\n 3 0 1 2\n 3 -1 1 2\n 3 1 2 99999999999\n 3 1 1 2\n 0 1 2 4\n -1 1 2 4\n 2147483647 1 2 4\n";
  trTriBlock mesh;
  EXPECT_EQ(read_format(mesh_format, mesh, head + nodes + bad_nodes + group + bad_elements + " 6 4 2 1 beyond\n" + end).out, "");
  EXPECT_EQ(mesh.node_count(), 5);
  EXPECT_EQ(mesh.valid_nodes(), 3);
  EXPECT_EQ(valid_elements(mesh), (std::vector<int>{6}));
  EXPECT_TRUE(is_sound(mesh));
}

// What a line has beyond its 99th character is not the next line.
TEST(MeshFileRead, LongLinesAreCut) {
  trTriBlock mesh;
  const std::string long_node = " 3 1 2 3" + std::string(200, ' ') + "x\n";
  read_format(mesh_format, mesh, "NODES,3F1" + std::string(95, 'F') + " 9 9 9 9\n" + long_node + group.substr(0, group.size() - 1) + std::string(200, ' ') + "\n");
  EXPECT_EQ(mesh.node_count(), 4);
  EXPECT_EQ(mesh.valid_nodes(), 1);
}

// Appended nodes get new numbers, and so do the attributes behind them.
TEST(MeshFileRead, AppendedAttributesGoToTheNewNodes) {
  BlockOf mesh(flat_sheet(1, 1));
  mesh.set_node_data_size(1);
  mesh.set_element_colour(1, 9);
  const std::string text = "NODES,FORMAT=(I8,4F16.4)\n 7 0 0 0\n 1.5\n 9 1 0 0\n 2.5\n 8 0 1 0\n 3.5\n" + group + " 1 7 9 8\n";
  const ReadOutcome read = read_format(mesh_format, mesh, text, {1, 0, 1, 0});
  EXPECT_EQ(read.out, " Preserving node data (1 attributes per node).\n");
  EXPECT_EQ(mesh.node_count(), 8);
  for (int k = 0; k < 3; ++k) EXPECT_EQ(mesh.node_data(5 + k).values[0], k + 1.5);
  const trElement& t = mesh.element(3);
  EXPECT_EQ((std::vector<int>{t[0], t[1], t[2]}), (std::vector<int>{5, 6, 7}));
  EXPECT_EQ(mesh.get_element_colour(3), 1);
  EXPECT_EQ(mesh.get_element_colour(1), 9);
}

TEST(MeshFileRead, ReportsAtEveryThousandth) {
  BlockOf mesh(flat_sheet(40, 30));
  const std::string text = write_format(mesh_format, mesh).bytes;
  trTriBlock again;
  const MarkingHook hook;
  InterruptingHandler handler;
  EXPECT_EQ(read_format(mesh_format, again, text + "ELEMENTS,TYPE=EN4Q   \n").out,
            "< Ignoring non standard elements type '4Q   <'\n");
  EXPECT_EQ(handler.messages, (std::vector<std::string>{"<Reading Mesh file...", "<Nodes read:  1000", "<Triangles read:  1000",
                                                        "<Triangles read:  2000", "<Finished reading Mesh file..."}));
  EXPECT_EQ(handler.percents, (std::vector<double>{0.0, -1.0, -1.0, -1.0, 100.0}));
}
