#include "scene_mesh.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <unordered_map>

namespace {

template <class T>
void append(std::string& bytes, const std::vector<T>& list) {
  const std::uint64_t count = list.size();
  bytes.append(reinterpret_cast<const char*>(&count), sizeof count);
  bytes.append(reinterpret_cast<const char*>(list.data()), list.size() * sizeof(T));
}

// Takes a list from the front of what is left.
template <class T>
bool take_list(const std::string& bytes, std::size_t& at, std::vector<T>& list) {
  std::uint64_t count = 0;
  if (bytes.size() - at < sizeof count) return false;
  std::memcpy(&count, bytes.data() + at, sizeof count);
  at += sizeof count;
  if (count > (bytes.size() - at) / sizeof(T)) return false;
  list.resize(static_cast<std::size_t>(count));
  if (count != 0) std::memcpy(list.data(), bytes.data() + at, list.size() * sizeof(T));
  at += list.size() * sizeof(T);
  return true;
}

}  // namespace

// Sorted by place and number, equal places lie side by side, the first of each in front. Values that are not numbers have no place.
void SceneMesh::join_vertices() {
  const auto count = static_cast<int>(points.size());
  std::vector<int> order(points.size());
  std::iota(order.begin(), order.end(), 0);
  const auto key = [this](int k) {
    std::array<double, 3> place = points[static_cast<std::size_t>(k)];
    for (double& x : place) x = x == 0.0 ? 0.0 : x;  // both zeros are one place
    return place;
  };
  const auto is_number = [&](int k) {
    const std::array<double, 3> place = key(k);
    return place == place;
  };
  const auto numbers_end = std::partition(order.begin(), order.end(), is_number);
  std::sort(order.begin(), numbers_end, [&](int a, int b) {
    const std::array<double, 3> p = key(a), q = key(b);
    return p != q ? p < q : a < b;
  });
  std::vector<int> first(points.size());
  std::iota(first.begin(), first.end(), 0);
  for (auto at = order.begin(); at != numbers_end; ++at) {
    if (at != order.begin() && key(*at) == key(at[-1])) {
      first[static_cast<std::size_t>(*at)] = first[static_cast<std::size_t>(at[-1])];
    }
  }
  std::vector<int> number(points.size());
  int kept = 0;
  for (int k = 0; k < count; ++k) {
    const auto at = static_cast<std::size_t>(k);
    if (first[at] == k) {
      points[static_cast<std::size_t>(kept)] = points[at];
      number[at] = kept++;
    } else {
      number[at] = number[static_cast<std::size_t>(first[at])];
    }
  }
  points.resize(static_cast<std::size_t>(kept));
  for (std::array<int, 3>& t : triangles) {
    for (int& corner : t) corner = number[static_cast<std::size_t>(corner)];
  }
}

void SceneMesh::drop_collapsed() {
  std::size_t kept = 0;
  for (std::size_t k = 0; k < triangles.size(); ++k) {
    const std::array<int, 3> t = triangles[k];
    if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0]) continue;
    triangles[kept] = t;
    if (!colours.empty()) colours[kept] = colours[k];
    ++kept;
  }
  collapsed_faces += static_cast<std::int64_t>(triangles.size() - kept);
  triangles.resize(kept);
  if (!colours.empty()) colours.resize(kept);
}

std::string SceneMesh::bytes() const {
  std::string all;
  append(all, std::vector<std::int64_t>{other_faces, collapsed_faces});
  append(all, points);
  append(all, triangles);
  append(all, colours);
  return all;
}

bool SceneMesh::take_bytes(const std::string& bytes) {
  std::size_t at = 0;
  std::vector<std::int64_t> left_out;
  if (!take_list(bytes, at, left_out) || left_out.size() != 2) return false;
  other_faces = left_out[0];
  collapsed_faces = left_out[1];
  if (!take_list(bytes, at, points) || !take_list(bytes, at, triangles) || !take_list(bytes, at, colours) || at != bytes.size()) return false;
  return colours.empty() || colours.size() == triangles.size();
}

void SceneMesh::give(giTriBlock& pool) const {
  giNodeXYZ places;
  pool.check_out(places);
  giTriArrcoFeature corners;
  pool.check_out(corners);
  giPoint3coPageArr& of_points = places.data()->points;
  for (const std::array<double, 3>& p : points) of_points[of_points.count()] = giPoint3(p[0], p[1], p[2]);
  giTrianglecoPageArr& of_triangles = corners.data()->triangles;
  for (const std::array<int, 3>& t : triangles) {
    giTriangle& given = of_triangles[of_triangles.count()];
    for (int k = 0; k < 3; ++k) given[k] = t[static_cast<std::size_t>(k)];
  }
  if (colours.empty()) return;
  giTriCols paint;
  pool.check_out(paint);
  for (const int colour : colours) (*paint.data())[paint.data()->count()] = tr_decode_colour(colour);
}

void SceneMesh::take(const giTriBlock& pool) {
  giNodeXYZ places;
  giTriArrcoFeature corners;
  if (!pool.find(places) || !pool.find(corners)) return;
  const giPoint3coPageArr& of_points = places.data()->points;
  points.reserve(static_cast<std::size_t>(of_points.count()));
  for (int k = 0; k < of_points.count(); ++k) points.push_back({of_points.at(k).x, of_points.at(k).y, of_points.at(k).z});
  const giTrianglecoPageArr& of_triangles = corners.data()->triangles;
  triangles.reserve(static_cast<std::size_t>(of_triangles.count()));
  for (int k = 0; k < of_triangles.count(); ++k) {
    const giTriangle& t = of_triangles.at(k);
    triangles.push_back({t[0], t[1], t[2]});
  }
  giTriCols paint;
  if (!pool.find(paint)) return;
  // The array starts black and transparent, which is what triangles without a colour are in it; they share it with those that are so.
  for (int k = 0; k < of_triangles.count(); ++k) {
    const int colour = tr_encode_colour(paint.data()->at(k));
    colours.push_back(colour == 0 ? NO_COLOUR : colour);
  }
}

void SceneMesh::sort_by_colour() {
  if (colours.empty()) return;
  std::unordered_map<int, int> rank;
  for (const int colour : colours) rank.emplace(colour, static_cast<int>(rank.size()));
  std::vector<std::size_t> order(triangles.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return rank.at(colours[a]) < rank.at(colours[b]); });
  const std::vector<std::array<int, 3>> old_triangles = triangles;
  const std::vector<int> old_colours = colours;
  for (std::size_t k = 0; k < order.size(); ++k) {
    triangles[k] = old_triangles[order[k]];
    colours[k] = old_colours[order[k]];
  }
}

void SceneMesh::split_by_colour() {
  if (colours.empty()) return;
  std::unordered_map<std::uint64_t, int> number;
  std::vector<std::array<double, 3>> split;
  for (std::size_t k = 0; k < triangles.size(); ++k) {
    for (int& corner : triangles[k]) {
      const std::uint64_t key = std::uint64_t{static_cast<std::uint32_t>(corner)} << 32 | static_cast<std::uint32_t>(colours[k]);
      const auto [found, is_new] = number.emplace(key, static_cast<int>(split.size()));
      if (is_new) split.push_back(points[static_cast<std::size_t>(corner)]);
      corner = found->second;
    }
  }
  points = std::move(split);
}
