#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vek0core/vek0core.h"
#include "vek0host/json.h"

namespace vek0::host {

/// What became of the drawings that one command has read, written and drawn: a list of entries for
/// each, in the order in which they were begun.
class LossLog {
 public:
  /// When something happened.
  enum Stage { Read, Write, Draw };

  /// The format that is written, for messages: "R12", "2018"; empty if none is.
  void setTarget(std::string target) { m_target = std::move(target); }
  /// Begins the list of a drawing, or continues it; what is added from now on belongs to it.
  void begin(const std::string& file);
  /// Adds what a report lists. Without a drawing, it is ignored.
  void add(Stage stage, const CFileReport& report);
  /// Adds that the drawing could not be read or written, for a reason in one sentence.
  void addFailure(Stage stage, const std::string& kind, const std::string& message);
  /// Adds a change that the user asked for, with what it was made to.
  void addChange(const std::string& code, const zim::WString& sample, const std::string& message);
  /// Adds that a picture lacks something.
  void addLoss(Stage stage, const std::string& code, long count, const std::string& message);

  /// Whether an entry of some drawing is of that severity or a worse one.
  bool has(ReportSeverity least) const;
  /// One object for each drawing: {"schema": 1, "file", "verb", "entries": [{"code", "severity",
  /// "stage", "count", "line", "sample", "message", "old", "new"}]}. Severities are "note",
  /// "repair", "change" and "loss"; line, sample, old and new are null where there is none.
  std::vector<Json> toJson(const std::string& verb) const;

  /// The lists as text, and the lists of such a text, to pass them between processes.
  std::string toText() const;
  void addText(const std::string& text);

 private:
  struct Drawing {
    std::string file;
    Json entries = Json::array();
  };

  void add(Json entry);

  std::string m_target;
  std::vector<Drawing> m_drawings;
  std::size_t m_current = 0;
};

/// What an entry of a report means, as a sentence for people: "R12 cannot hold the lineweights of 8
/// entities". `target` is the format that was written, empty for one that was read.
std::string messageOf(const CFileReport::Entry& entry, const std::string& target);

}  // namespace vek0::host
