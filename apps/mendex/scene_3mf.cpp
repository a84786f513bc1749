#include "scene_3mf.h"

#include <zlib.h>

#include <cstdint>
#include <limits>

#include "text_bytes.h"

namespace {

// A zip file with packed entries, written from its start to its end.
class ZipFile {
 public:
  explicit ZipFile(std::FILE* stream) : stream_(stream) {}

  void add(const std::string& name, const std::string& contents) {
    std::string packed;
    is_sound_ = is_sound_ && contents.size() < most_bytes && deflate_to(contents, packed);
    std::string facts;  // what an entry's head and the list at the end have in common
    for (const std::uint16_t value : {version, names_in_utf8, packed_method, midnight, first_day}) append_raw(facts, value);
    append_raw(facts, static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(contents.data()), contents.size())));
    append_raw(facts, static_cast<std::uint32_t>(packed.size()));
    append_raw(facts, static_cast<std::uint32_t>(contents.size()));
    append_raw(facts, static_cast<std::uint16_t>(name.size()));
    append_raw(facts, std::uint16_t{0});
    list_ += "PK\x01\x02";
    append_raw(list_, version);
    list_ += facts;
    list_.append(10, '\0');  // no comment, the first disk, no attributes
    append_raw(list_, static_cast<std::uint32_t>(written_));
    list_ += name;
    ++entries_;
    put("PK\x03\x04" + facts + name + packed);
  }

  bool finish() {
    const std::uint64_t list_at = written_;
    put(list_);
    std::string end = "PK\x05\x06";
    append_raw(end, std::uint32_t{0});
    append_raw(end, entries_);
    append_raw(end, entries_);
    append_raw(end, static_cast<std::uint32_t>(list_.size()));
    append_raw(end, static_cast<std::uint32_t>(list_at));
    append_raw(end, std::uint16_t{0});
    put(end);
    return is_sound_ && written_ < most_bytes;
  }

 private:
  static constexpr std::uint16_t version = 20, names_in_utf8 = 1 << 11, packed_method = 8;
  static constexpr std::uint16_t midnight = 0, first_day = 1 << 5 | 1;  // of 1980: files do not differ by when they were written
  static constexpr std::uint64_t most_bytes = std::numeric_limits<std::uint32_t>::max();

  static bool deflate_to(const std::string& from, std::string& to) {
    z_stream packer = {};
    constexpr int without_header = -15, memory_level = 8;
    if (deflateInit2(&packer, Z_BEST_SPEED, Z_DEFLATED, without_header, memory_level, Z_DEFAULT_STRATEGY) != Z_OK) return false;
    to.resize(deflateBound(&packer, from.size()));
    packer.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(from.data()));
    packer.avail_in = static_cast<uInt>(from.size());
    packer.next_out = reinterpret_cast<Bytef*>(&to[0]);
    packer.avail_out = static_cast<uInt>(to.size());
    const bool is_done = deflate(&packer, Z_FINISH) == Z_STREAM_END;
    to.resize(packer.total_out);
    deflateEnd(&packer);
    return is_done;
  }

  void put(const std::string& bytes) {
    is_sound_ = is_sound_ && std::fwrite(bytes.data(), 1, bytes.size(), stream_) == bytes.size();
    written_ += bytes.size();
  }

  std::FILE* stream_;
  std::string list_;
  std::uint16_t entries_ = 0;
  std::uint64_t written_ = 0;
  bool is_sound_ = true;
};

// Puts the model's text together.
class ModelText {
 public:
  explicit ModelText(const SceneMesh& mesh) : mesh_(mesh), numbers_(mesh.points.size(), -1) {}

  std::string text() {
    text_ = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<model unit=\"millimeter\" xmlns=\"http://schemas.microsoft.com/3dmanufacturing/core/2015/02\">\n<resources>\n";
    std::vector<std::size_t> starts;  // of the objects, and the end
    const std::size_t count = mesh_.triangles.size();
    for (std::size_t k = 0; k < count; ++k) {
      if (k == 0 || (!mesh_.colours.empty() && mesh_.colours[k] != mesh_.colours[k - 1])) starts.push_back(k);
    }
    if (!mesh_.colours.empty()) add_materials(starts);
    for (std::size_t k = 0; k < starts.size(); ++k) add_object(k, starts[k], k + 1 < starts.size() ? starts[k + 1] : count);
    text_ += "</resources>\n<build>\n";
    for (std::size_t k = 0; k < starts.size(); ++k) attribute("<item objectid", k + first_object).text_ += "/>\n";
    text_ += "</build>\n</model>\n";
    return std::move(text_);
  }

 private:
  static constexpr std::size_t first_object = 2;  // resources count on from the materials

  template <class T>
  ModelText& attribute(const char* name, T value) {
    text_ += name;
    text_ += "=\"";
    append_number(text_, value);
    text_ += '"';
    return *this;
  }

  void add_materials(const std::vector<std::size_t>& starts) {
    text_ += "<basematerials id=\"1\">\n";
    for (std::size_t k = 0; k < starts.size(); ++k) {
      char line[80];
      std::snprintf(line, sizeof line, "<base name=\"colour%zu\" displaycolor=\"#%08X\"/>\n", k + 1,
                    static_cast<unsigned>(mesh_.colours[starts[k]]));
      text_ += line;
    }
    text_ += "</basematerials>\n";
  }

  void add_object(std::size_t number, std::size_t first, std::size_t last) {
    attribute("<object type=\"model\" id", number + first_object);
    if (!mesh_.colours.empty()) attribute(" pid", 1).attribute(" pindex", number);
    text_ += "><mesh><vertices>\n";
    std::vector<std::size_t> used;
    for (std::size_t k = first; k < last; ++k) {
      for (const int corner : mesh_.triangles[k]) add_vertex(static_cast<std::size_t>(corner), used);
    }
    text_ += "</vertices><triangles>\n";
    for (std::size_t k = first; k < last; ++k) {
      const std::array<int, 3>& t = mesh_.triangles[k];
      const auto at = [this](int corner) { return numbers_[static_cast<std::size_t>(corner)]; };
      attribute("<triangle v1", at(t[0])).attribute(" v2", at(t[1])).attribute(" v3", at(t[2]));
      if (!mesh_.colours.empty()) attribute(" pid", 1).attribute(" p1", number);
      text_ += "/>\n";
    }
    text_ += "</triangles></mesh></object>\n";
    for (const std::size_t point : used) numbers_[point] = -1;  // free for the next object
  }

  void add_vertex(std::size_t point, std::vector<std::size_t>& used) {
    if (numbers_[point] >= 0) return;
    numbers_[point] = static_cast<int>(used.size());
    used.push_back(point);
    const std::array<double, 3>& p = mesh_.points[point];
    attribute("<vertex x", p[0]).attribute(" y", p[1]).attribute(" z", p[2]).text_ += "/>\n";
  }

  const SceneMesh& mesh_;
  std::vector<int> numbers_;  // of the points in the object at work; -1: not in it
  std::string text_;
};

}  // namespace

bool write_3mf(const SceneMesh& mesh, std::FILE* stream) {
  ZipFile zip(stream);
  zip.add("[Content_Types].xml",
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
          "<Default Extension=\"rels\" ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
          "<Default Extension=\"model\" ContentType=\"application/vnd.ms-package.3dmanufacturing-3dmodel+xml\"/></Types>\n");
  zip.add("_rels/.rels",
          "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
          "<Relationship Target=\"/3D/3dmodel.model\" Id=\"rel0\" "
          "Type=\"http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel\"/></Relationships>\n");
  zip.add("3D/3dmodel.model", ModelText(mesh).text());
  return zip.finish();
}
