#include <algorithm>
#include <climits>
#include <cstdint>
#include <ostream>

#include "formats/entity_limit.h"
#include "mesh/memory_guard.h"
#include "progress/message.h"
#include "formats/tri_read.h"
#include "formats/word_scanner.h"
#include "mesh/tri_block.h"
#include "progress/progress.h"

namespace {

enum class Keyword { vertex, facet, endfacet, other };

constexpr std::string_view spelling[] = {"vertex", "facet", "endfacet"};

std::string_view spelling_of(Keyword keyword) { return spelling[static_cast<int>(keyword)]; }

// Setting one bit makes a capital the small letter and nothing else that letter.
bool is_spelt(std::string_view word, std::string_view lower_case) {
  return word.size() == lower_case.size() &&
         std::equal(word.begin(), word.end(), lower_case.begin(), [](char c, char letter) { return (c | 0x20) == letter; });
}

Keyword classified(std::string_view word) {
  for (const Keyword keyword : {Keyword::vertex, Keyword::facet, Keyword::endfacet}) {
    if (is_spelt(word, spelling_of(keyword))) return keyword;
  }
  return Keyword::other;
}

void tell(const char* error) {
  std::ostream& out = tr_out();
  out << tr_brnknls("*** Error: ");
  out << tr_brnknls(error);
  out << tr_brnknls(" ***") << '\n';
}

void tell_wrong_keyword(Keyword sought, Keyword found) {
  std::ostream& out = tr_out();
  out << tr_brnknls("*** Error: expected '") << spelling_of(sought);
  out << tr_brnknls("' but found '") << spelling_of(found);
  out << tr_brnknls("' ***") << '\n';
}

// The facets of the file one after the other.
class FacetScanner {
 public:
  explicit FacetScanner(std::FILE* file) : words_(file) {}

  std::int64_t bytes_read() const { return words_.passed(); }

  enum class Result { facet, end, failed };

  Result next(giPoint3 (&corners)[3]) {
    switch (search(Keyword::facet)) {
      case Search::found: break;
      case Search::end: return Result::end;
      case Search::failed: return Result::failed;
    }
    for (giPoint3& corner : corners) {
      if (!demand(Keyword::vertex) || !read_point(corner)) return Result::failed;
    }
    return demand(Keyword::endfacet) ? Result::facet : Result::failed;
  }

 private:
  enum class Search { found, end, failed };

  // Words that are no keyword are passed over. A last word without a line end after it counts like any other.
  Search search(Keyword sought) {
    for (;;) {
      const Keyword found = classified(words_.next_word());
      if (found == sought) return Search::found;
      if (found != Keyword::other) {
        tell_wrong_keyword(sought, found);
        return Search::failed;
      }
      if (words_.has_ended()) return Search::end;
    }
  }

  bool demand(Keyword sought) {
    const Search result = search(sought);
    if (result == Search::end) tell("unexpected end of file");
    return result == Search::found;
  }

  bool read_point(giPoint3& point) {
    if (words_.next_number(point.x) && words_.next_number(point.y) && words_.next_number(point.z)) return true;
    tell("problem reading vertex coordinates");
    return false;
  }

  WordScanner words_;
};

class AsciiFacetReader {
 public:
  AsciiFacetReader(trTriBlock& mesh, std::FILE* file) : mesh_(mesh), scanner_(file) {}

  enum class End { complete, failed, interrupted };

  End read_range(int start, int stop) {
    bool is_skipping = start != 1;
    const bool is_limited = start <= stop;
    giPoint3 corners[3];
    for (;;) {
      if (tr_interrupt()) return End::interrupted;
      if (is_skipping && facets_read_ == std::int64_t{start} - 1) is_skipping = false;
      tr_report_triangles(static_cast<int>(std::min<std::int64_t>(facets_read_, INT_MAX)), -1, 0.0, 100.0);
      const FacetScanner::Result result = scanner_.next(corners);
      if (result == FacetScanner::Result::end) return End::complete;
      if (result == FacetScanner::Result::failed) return End::failed;
      if (!is_skipping) {
        if (!has_room_for_facet(mesh_)) return End::failed;
        mesh_.append_facet(corners);
      }
      ++facets_read_;
      if (is_limited && facets_read_ == stop) return End::complete;
    }
  }

  std::int64_t facets_read() const { return facets_read_; }
  std::int64_t bytes_read() const { return scanner_.bytes_read(); }

 private:
  trTriBlock& mesh_;
  FacetScanner scanner_;
  std::int64_t facets_read_ = 0;
};

}  // namespace

int trTriRead::read_ast(int start, int stop) {
  if (!coMemoryScope::is_open()) return tr_guarded(mesh, 0, [&] { return read_ast(start, stop); });
  tr_report_progress(tr_brnknls(append ? "Appending ASCII STL file ..." : "Reading ASCII STL file ..."), 0.0);
  reset_node_data_size(0);
  begin_reading();
  AsciiFacetReader facets(*mesh, file);
  const AsciiFacetReader::End end = facets.read_range(start, stop);
  bytes_read_ = facets.bytes_read();
  if (end == AsciiFacetReader::End::interrupted) return 0;
  const bool is_complete = end == AsciiFacetReader::End::complete;
  if (!is_complete) print_message("*** Error: problem reading facet ", facets.facets_read() + 1, " ***");
  tr_report_progress(tr_brnknls("Finished reading ASCII STL file"), 100.0);
  return is_complete;
}
