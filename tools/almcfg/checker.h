#ifndef TOOLS_ALMCFG_CHECKER_H_
#define TOOLS_ALMCFG_CHECKER_H_

#include <vector>

#include "tools/almcfg/finding.h"
#include "tools/almcfg/loaded_files.h"

namespace almcfg {

/// Says what is wrong or odd about each line that is loaded, and about each file.
///
/// Findings reach the sink in the order of lines, those about a whole file last. Comments are only measured
/// for their length: what they hold does not matter to a load.
class Checker : public LineObserver {
 public:
  /// `sink` is borrowed.
  explicit Checker(FindingSink& sink) : sink_(sink) {}

  void OnLine(const LoadedFiles& files, const TakenLine& taken) override;
  void OnEnd(const SourceText& text) override;

 private:
  void Find(const LoadedFiles& files, const TakenLine& taken);
  void FindOverlong(const TakenLine& taken);
  bool FindNul(const TakenLine& taken);
  bool FindByteOrderMark(const TakenLine& taken);
  bool FindIndentedComment(const TakenLine& taken);
  void FindForeignBytes(const TakenLine& taken);
  void FindDuplicates(const LoadedFiles& files, const TakenLine& taken);
  void ExplainBad(const TakenLine& taken);

  FindingSink& sink_;
  std::vector<Finding> findings_;  // of the line at hand

  // Of the file at hand.
  LineNumber crLines_ = 0;
  LineNumber firstCrLine_ = 0;
};

/// The finding for a file that could not be read.
Finding Unreadable(const ReadError& error);

}  // namespace almcfg

#endif  // TOOLS_ALMCFG_CHECKER_H_
