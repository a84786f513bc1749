#pragma once

#include <cstdio>

#include "analysis/isect_elems.h"
#include "analysis/overhang_elems.h"
#include "analysis/overlap_elems.h"
#include "analysis/sick_elems.h"
#include "analysis/small_elems.h"
#include "analysis/thin_elems.h"
#include "boundaries/cycle_array.h"
#include "boundaries/section.h"
#include "control/file_type.h"
#include "control/flag_action.h"
#include "mesh/tri_block.h"
#include "platform/common/workplane_list.h"
#include "platform/utilities/export.h"
#include "platform/utilities/ut_string.h"
#include "undo/undo_hist.h"

/// What a host drives the library through: one mesh, its boundaries, its defect lists, the journal of its edits and the settings.
///
/// A host makes one controller and keeps it. It brackets each edit with `start_undo` and `finish_undo`; an edit outside a bracket
/// cannot be taken back, and neither can the edits before it from then on: call `undo_hist().reset("")` after one. Results go to the output stream
/// (`tr_out`) as lines of text and, as commands, to files that the host hands in and the controller closes.
/// Wrong arguments print a line that begins with " Error: " and change nothing. Nothing throws.
/// Several controllers may be used in turn, from one thread; only one of them has its boundaries detected at a time.
/// Operations that are const but search or edit do so through self(): never define an object of this class as const.
class MENDEX_EXPORT trControl {
 public:
  trControl();
  trControl(const trControl&) = delete;
  trControl& operator=(const trControl&) = delete;
  virtual ~trControl();

  /// Called after every change of the mesh, for a host to refresh its views: with 1 when triangles came, went or moved, with 0 when only
  /// their order, numbers or attributes changed. Does nothing here.
  virtual void control_update(int what);
  /// The host's active workplane; here the one that stands for none.
  virtual const ccWorkplane& active_workplane() const;
  /// Maps into the host's frame; here nothing is mapped.
  virtual giVector3 apply_workplane(const giVector3& v) const;
  virtual giPoint3 apply_workplane(const giPoint3& p) const;

  // --- what it holds ----------------------------------------------------------------------------------------------------------------
  trTriBlock& triblock() { return triblock_; }
  const trTriBlock& triblock() const { return triblock_; }
  trCycleArray& cycles() { return cycles_; }
  const trCycleArray& cycles() const { return cycles_; }
  trUndoHist& undo_hist() { return undo_hist_; }
  const trUndoHist& undo_hist() const { return undo_hist_; }
  trSickElems& sick_elems() { return sick_elems_; }
  trSmallElems& small_elems() { return small_elems_; }
  trThinElems& thin_elems() { return thin_elems_; }
  trOverlapElems& overlap_elems() { return overlap_elems_; }
  trIsectElems& isect_elems() { return isect_elems_; }
  trOverhangElems& overhang_elems() { return overhang_elems_; }
  trSection& section() { return section_; }
  /// Whether an edit was kept since the mesh was last exchanged with the host.
  int triblock_changed() const { return triblock_changed_; }

  // --- settings: each action ends by printing the setting -------------------------------------------------------------------------------
  /// Whether reports of the block are verbose; off at first.
  void action_verbose(trFlagAction action);
  void print_verbose() const;
  /// Whether every operation can be taken back, or only the last; on at first. A change forgets the whole history.
  void action_undomode(trFlagAction action);
  void print_undomode() const;
  /// Whether triangle files are written with smooth normals; on at first.
  void action_trismooth(trFlagAction action);
  void print_trismooth() const;
  /// Whether readers keep node attributes; off at first. Off deletes the attributes that the mesh has.
  void action_preserve(trFlagAction action);
  void print_preserve() const;
  /// The triangles of STL files to read, counted from 1; a stop of 0 means up to the end. Refused when start < 1 or stop < start.
  void action_stlrange(int start, int stop);
  void print_stlrange() const;

  int stl_start() const { return stl_start_; }
  int stl_stop() const { return stl_stop_; }
  int trismooth() const { return trismooth_; }
  int preserve() const { return preserve_; }
  /// The file last opened for reading or writing.
  utString file_name() const { return file_name_; }

  // --- undo ---------------------------------------------------------------------------------------------------------------------------
  /// Opens a record of that name; edits are recorded until it is finished. What could have been redone is dropped.
  void start_undo(const utString& name);
  /// Closes the record: keeps it, or with `success` 0 takes the edits back at once and for good. Without an open record nothing is closed
  /// or taken back.
  void finish_undo(int success);
  /// Take back, or do again, up to `count` operations. The boundary selection is cleared.
  void action_undo(int count);
  void action_redo(int count);
  /// Lists the records, also to `file` when there is one, and closes it.
  void action_history(std::FILE* file);

  // --- reports ------------------------------------------------------------------------------------------------------------------------
  void print_system_params(int full) const;
  /// The summary of each defect list; with `detect` those that are out of date are searched first, save the intersections.
  void print_element_lists(int detect) const;
  /// Settings, statistics of the mesh, defect lists and boundaries, in full with `level`. `file` receives register commands and is
  /// closed; without one the shape statistics are left out. `tol` is what they are compared with.
  void action_info(int level, double tol, std::FILE* file);

  // --- exchange with the host -----------------------------------------------------------------------------------------------------------
  /// Replaces the mesh by the host's: points, triangles that are not masked, colours. Host points and triangles count from 0; triangles
  /// that name points which are not there are passed over. The history is forgotten. A pool without points or triangles gives none.
  void action_fill_triblock(coFeaturePool& pool);
  /// The colours of the host's triangles for the mesh as filled from the same pool.
  void action_fill_triblock_colours(coFeaturePool& pool);

 protected:
  void reset_defaults();
  void toggle_flag(trFlagAction action, int& flag);
  /// One line: the name as given and whether the flag is on.
  void print_flag(int flag, const char* name) const;
  /// To be called after every change of the mesh: defect lists and what the block derived go stale, the host is told.
  void triangle_update(int what);
  /// @param first  the element of the first colour; 0 for a mesh that was just filled
  void action_append_triblock_colours(coFeaturePool& pool, int first);

 private:
  enum class Step { undo, redo };

  trControl* self() const { return const_cast<trControl*>(this); }
  int repeat_step(Step step, int count);

  trTriBlock triblock_;
  trCycleArray cycles_;
  trUndoHist undo_hist_;
  int stl_start_ = 1;
  int stl_stop_ = 0;
  int trismooth_ = 1;
  int preserve_ = 0;
  utString file_name_;
  int rwrite_flag_ = 0;  // 1 while files are written with consecutive numbers
  trSickElems sick_elems_;
  trSmallElems small_elems_;
  trThinElems thin_elems_;
  trOverlapElems overlap_elems_;
  trIsectElems isect_elems_;
  trOverhangElems overhang_elems_;
  trSection section_;
  int triblock_changed_ = 0;
};
