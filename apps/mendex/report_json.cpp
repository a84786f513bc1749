#include "json_values.h"
#include "report.h"

std::string json_of_info(const Session& session, const std::string& file, const ReadOutcome& read,
                         const MeshStatistics& mesh) {
  Json object = {{"file", file}, {"format", name_of(read.format)}};
  object.update(statistics(mesh));
  object.set("complete", read.is_complete);
  object.set("warnings", session.messages.warnings());
  return line_of(object);
}

std::string json_of_weld(const Session& session, const WeldAccount& account) {
  const Json object = {{"file", account.input},
                       {"format", name_of(account.read.format)},
                       {"output", account.output},
                       {"output_format", name_of(account.written)},
                       {"tolerance", account.tolerance},
                       {"before", statistics(account.before)},
                       {"after", statistics(account.after)},
                       {"merged_nodes", account.merged_nodes()},
                       {"deleted_elements", account.deleted_elements()},
                       {"complete", account.read.is_complete},
                       {"warnings", session.messages.warnings()}};
  return line_of(object);
}
