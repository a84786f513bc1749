#include <gtest/gtest.h>

#include "formats/stl_files.h"
#include "support/random.h"
#include "support/shapes.h"

namespace {

// Coordinates that single precision holds, of many magnitudes; zeros of both signs.
Shape single_precision_soup(Random& random, int triangles) {
  Shape shape;
  const auto coordinate = [&random] {
    if (random.one_in(10)) return random.one_in(2) ? 0.0 : -0.0;
    return double{static_cast<float>(std::ldexp(random.between(-1.0, 1.0), random.between(-20, 20)))};
  };
  for (int t = 0; t < triangles; ++t) {
    for (int k = 0; k < 3; ++k) shape.points.emplace_back(coordinate(), coordinate(), coordinate());
    shape.triangles.push_back({3 * t, 3 * t + 1, 3 * t + 2});
  }
  return shape;
}

}  // namespace

// What was read from a file that this library wrote is written as the same bytes again. Only the first file's normals may differ:
// they come from coordinates in double precision.
TEST(StlRoundTrip, WrittenReadAndWrittenAgainTheBytesAreTheSame) {
  Random random(71);
  const Shape shapes[] = {closed_box(), sphere(6), punctured_sphere(8, 3), torus(12, 5), single_precision_soup(random, 400), Shape()};
  for (const Shape& shape : shapes) {
    const BlockOf mesh(shape);
    trTriBlock first;
    EXPECT_EQ(read_binary(first, written_binary(mesh, 1).bytes).result, 1);
    EXPECT_EQ(first.valid_elements(), static_cast<int>(shape.triangles.size()));
    const std::string binary = written_binary(first).bytes;
    trTriBlock second;
    EXPECT_EQ(read_binary(second, binary).result, 1);
    EXPECT_EQ(written_binary(second).bytes, binary);

    EXPECT_EQ(read_ascii(first, written_ascii(mesh, 1).bytes).result, 1);
    const std::string ascii = written_ascii(first).bytes;
    EXPECT_EQ(read_ascii(second, ascii).result, 1);
    EXPECT_EQ(geometry_of(second), geometry_of(first));
    EXPECT_EQ(written_ascii(second).bytes, ascii);
  }
}

// Single precision is carried over without loss.
TEST(StlRoundTrip, SinglePrecisionCoordinatesComeBackAsTheyWere) {
  Random random(72);
  const BlockOf mesh(single_precision_soup(random, 400));
  trTriBlock read;
  read_binary(read, written_binary(mesh).bytes);
  EXPECT_EQ(geometry_of(read), geometry_of(mesh));
}
