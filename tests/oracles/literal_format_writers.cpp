#include "oracles/literal_format_writers.h"

#include <map>
#include <set>
#include <vector>

namespace {

template <class T>
void put(std::string& bytes, T value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

template <class... Values>
void print(std::string& text, const char* format, Values... values) {
  char line[1000];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
  std::snprintf(line, sizeof line, format, values...);
#pragma GCC diagnostic pop
  text += line;
}

double attribute(const trTriBlock& mesh, int node, int k) { return mesh.has_node_data(node) ? mesh.node_data(node).values[k] : 0.0; }

void put_attributes(std::string& bytes, const trTriBlock& mesh, int rwrite) {
  const int size = mesh.node_data_size();
  bytes += rwrite ? "\x5e\x55\xe5\xeeNDTR" : "\x5e\x55\xe5\xeeNDTI";
  put(bytes, mesh.valid_nodes() * ((rwrite ? 0 : 4) + 8 * size) + 2);
  put(bytes, static_cast<unsigned short>(size));
  for (int i = 1; i < mesh.node_count(); ++i) {
    if (mesh.node(i).invalid == 1) continue;
    if (!rwrite) put(bytes, i);
    for (int k = 0; k < size; ++k) put(bytes, attribute(mesh, i, k));
  }
}

void put_colours(std::string& bytes, const trTriBlock& mesh) {
  std::vector<int> colours, counts;
  for (int e = 1; e < mesh.element_count(); ++e) {
    if (mesh.element(e)[0] == 0) continue;
    std::size_t place = 0;
    while (place < colours.size() && colours[place] != mesh.get_element_colour(e)) ++place;
    if (place == colours.size()) {
      colours.push_back(mesh.get_element_colour(e));
      counts.push_back(0);
    }
    ++counts[place];
  }
  std::size_t highest = 0;
  for (std::size_t k = 1; k < colours.size(); ++k) {
    if (counts[k] > counts[highest]) highest = k;
  }
  std::swap(colours[0], colours[highest]);
  std::swap(counts[0], counts[highest]);
  bytes += "\x5e\x55\xe5\xee" "ECLI";
  const int listed_colours = static_cast<int>(colours.size());
  put(bytes, 4 * (mesh.valid_elements() + 2 * listed_colours - counts[0]));
  put(bytes, listed_colours);
  put(bytes, colours[0]);
  for (std::size_t k = 1; k < colours.size(); ++k) {
    put(bytes, counts[k]);
    put(bytes, colours[k]);
  }
  for (std::size_t k = 1; k < colours.size(); ++k) {
    for (int e = 1; e < mesh.element_count(); ++e) {
      if (mesh.element(e)[0] != 0 && mesh.get_element_colour(e) == colours[k]) put(bytes, e);
    }
  }
}

int colour_of(const trTriBlock& mesh, int e) { return mesh.default_colour() >= 0 ? mesh.get_element_colour(e) : 1; }

}  // namespace

std::string literal_native(const trTriBlock& mesh, int rwrite) {
  std::string bytes = "MENDEX native file (format 1.2)";
  bytes.resize(80);
  put(bytes, mesh.valid_nodes());
  std::map<int, int> renumbered;
  for (int i = 1, next = 0; i < mesh.node_count(); ++i) {
    if (mesh.node(i).invalid == 1) continue;
    renumbered[i] = rwrite ? ++next : i;
    put(bytes, renumbered[i]);
    for (int axis = 0; axis < 3; ++axis) put(bytes, mesh.point(i)[axis]);
  }
  put(bytes, mesh.valid_elements());
  for (int e = 1, next = 0; e < mesh.element_count(); ++e) {
    if (mesh.element(e)[0] == 0) continue;
    put(bytes, rwrite ? ++next : e);
    for (int k = 0; k < 3; ++k) put(bytes, renumbered[mesh.element(e)[k]]);
  }
  if (mesh.node_data_size() != 0) put_attributes(bytes, mesh, rwrite);
  if (mesh.default_colour() >= 0) put_colours(bytes, mesh);
  bytes += "\x5e\x55\xe5\xeeTERM";
  put(bytes, 0);
  return bytes;
}

std::string literal_mesh_file(const trTriBlock& mesh, int rwrite) {
  const int attributes = mesh.node_data_size() <= 4 ? mesh.node_data_size() : 3;
  std::string text = "$INIT\nSDB,NEW,PFN,KARN\n$BULK\n";
  print(text, "NODES,FORMAT=(I8,%dF16.4)\n", 3 + attributes);
  std::map<int, int> renumbered;
  for (int i = 1, next = 0; i < mesh.node_count(); ++i) {
    if (mesh.node(i).invalid == 1) continue;
    renumbered[i] = rwrite ? ++next : i;
    print(text, "%8d%16.4lf%16.4lf%16.4lf\n", renumbered[i], mesh.point(i).x, mesh.point(i).y, mesh.point(i).z);
    for (int k = 0; k < attributes; ++k) print(text, "%16.4lf", attribute(mesh, i, k));
    if (attributes != 0) text += "\n";
  }
  text += "DEFBLK=KARNSURFACE\n";
  std::set<int> written;
  for (int s = 1, number = 0; s != 0;) {
    const int colour = colour_of(mesh, s);
    print(text, "ELEMENTS,TYPE=EN3PM  ,COLOUR=%5d\n", colour);
    written.insert(colour);
    int next = 0;
    for (int e = s; e < mesh.element_count(); ++e) {
      const trElement& t = mesh.element(e);
      if (t[0] == 0) continue;
      if (colour_of(mesh, e) == colour) {
        ++number;
        print(text, "%8d%8d%8d%8d\n", rwrite ? number : e, renumbered[t[0]], renumbered[t[1]], renumbered[t[2]]);
      } else if (!rwrite) {
        next = e;
        break;
      } else if (next == 0 && written.count(colour_of(mesh, e)) == 0) {
        next = e;
      }
    }
    s = next;
  }
  return text + "$TERM\n";
}
