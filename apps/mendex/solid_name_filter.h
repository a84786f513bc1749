#pragma once

#include <string>

/// Takes the names of solids out of a running ASCII STL text.
///
/// The library's reader knows no names: the words "facet", "vertex" and "endfacet" are keywords to it wherever they
/// stand. So in "solid facet of a name" all that follows "solid" or "endsolid" is dropped, up to the end of the line
/// or, in files that put everything on one line, up to a "facet" that "normal" or "outer" follows. Text outside names
/// passes unchanged. Works in pieces of any size, in bounded memory, at nearly the speed of a copy.
class SolidNameFilter {
 public:
  /// Appends to `out` what remains of the next piece. Words cut by the end of a piece are kept back until the next one.
  void add(const char* piece, std::size_t size, std::string& out);

  /// Appends what was kept back; the text ends here.
  void finish(std::string& out);

 private:
  const char* pass_text(const char* from, const char* end, std::string& out);
  const char* drop_name(const char* from, const char* end, std::string& out);
  void filter(const char* begin, const char* end, std::string& out);

  std::string kept_back_;  // the beginning of a word, at most as long as the longest keyword
  std::string joined_;     // scratch: what was kept back and the next piece
  bool is_in_name_ = false;
  bool is_in_long_word_ = false;  // the piece before ended within a word too long for a keyword
  bool saw_facet_ = false;        // within a name, the last word was "facet"
};
