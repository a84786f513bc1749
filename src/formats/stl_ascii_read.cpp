// ASCII STL: a stream of words in which only facet, vertex, endfacet and the numbers behind vertex count.

#include <climits>
#include <ostream>

#include "formats/entity_limit.h"
#include "formats/tri_read.h"
#include "formats/word_scanner.h"
#include "mesh/tri_block.h"
#include "progress/output.h"
#include "progress/progress.h"

namespace {

using Word = WordScanner::Word;

const char* keyword_text(Word word) {
  switch (word) {
    case Word::vertex: return "vertex";
    case Word::facet: return "facet";
    case Word::endfacet: return "endfacet";
    case Word::other: break;
  }
  return "";
}

void report_error(const char* text) { tr_out() << tr_brnknls("*** Error: ") << tr_brnknls(text) << tr_brnknls(" ***") << '\n'; }

enum class Search { found, wrong_keyword, end_of_file };

Search search_keyword(WordScanner& scanner, Word sought) {
  while (true) {
    const Word word = scanner.next_word();
    if (word == sought) return Search::found;
    if (word != Word::other) {
      tr_out() << tr_brnknls("*** Error: expected '") << keyword_text(sought) << tr_brnknls("' but found '") << keyword_text(word)
               << tr_brnknls("' ***") << '\n';
      return Search::wrong_keyword;
    }
    if (scanner.at_end()) return Search::end_of_file;
  }
}

// Within a facet the file must not end.
bool expect_keyword(WordScanner& scanner, Word sought) {
  const Search result = search_keyword(scanner, sought);
  if (result == Search::end_of_file) report_error("unexpected end of file");
  return result == Search::found;
}

bool read_corner(WordScanner& scanner, giPoint3& corner) {
  if (!expect_keyword(scanner, Word::vertex)) return false;
  for (int axis = 0; axis < 3; ++axis) {
    const std::optional<double> number = scanner.next_number();
    if (!number) {
      report_error("problem reading vertex coordinates");
      return false;
    }
    corner[axis] = *number;
  }
  return true;
}

bool read_corners(WordScanner& scanner, giPoint3 (&corners)[3]) {
  for (giPoint3& corner : corners) {
    if (!read_corner(scanner, corner)) return false;
  }
  return expect_keyword(scanner, Word::endfacet);
}

}  // namespace

int trTriRead::read_ast(int start, int stop) {
  tr_report_progress(tr_brnknls(append ? "Appending ASCII STL file ..." : "Reading ASCII STL file ..."), 0.0);
  bool skipping = start != 1;
  const bool limited = start <= stop;
  reset_node_data_size(0);
  begin_reading();
  WordScanner scanner(file);
  bool failed = false;
  for (int k = 0; !limited || k < stop || stop <= 0; k += k < INT_MAX) {
    if (tr_interrupt()) return 0;
    if (skipping && k == start - 1) skipping = false;
    tr_report_triangles(k, -1, 0.0, 100.0);
    const Search facet = search_keyword(scanner, Word::facet);
    if (facet == Search::end_of_file) break;
    giPoint3 corners[3];
    failed = facet == Search::wrong_keyword || !read_corners(scanner, corners) || (!skipping && !has_room_for_facet(*mesh));
    if (failed) {
      tr_out() << tr_brnknls("*** Error: problem reading facet ") << static_cast<long long>(k) + 1 << tr_brnknls(" ***") << '\n';
      break;
    }
    if (!skipping) mesh->append_facet(corners);
  }
  tr_report_progress(tr_brnknls("Finished reading ASCII STL file"), 100.0);
  return !failed;
}
