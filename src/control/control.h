#pragma once

#include <cstdio>

#include "analysis/isect_elems.h"
#include "analysis/overhang_elems.h"
#include "analysis/overlap_elems.h"
#include "analysis/sick_elems.h"
#include "analysis/small_elems.h"
#include "analysis/thin_elems.h"
#include "boundaries/auto_mode.h"
#include "boundaries/cycle_array.h"
#include "boundaries/section.h"
#include "control/file_type.h"
#include "control/flag_action.h"
#include "mesh/tri_block.h"
#include "platform/common/workplane_list.h"
#include "platform/containers/int_table.h"
#include "platform/utilities/export.h"
#include "platform/utilities/ut_string.h"
#include "undo/undo_hist.h"

/// What a host drives the library through: one mesh, its boundaries, its defect lists, the journal of its edits and the settings.
///
/// A host makes one controller and keeps it. It brackets each edit with `start_undo` and `finish_undo`; an edit outside a bracket
/// cannot be taken back, and neither can the edits before it from then on: call `undo_hist().reset("")` after one. Results go to the output stream
/// (`tr_out`) as lines of text and, as commands, to files that the host hands in and the controller closes.
/// Wrong arguments change nothing; nearly all actions print why, as a line. Nothing throws.
/// Several controllers may be used in turn, from one thread; only one of them has its boundaries detected at a time.
/// Operations that are const but search or edit do so through self(): never define an object of this class as const.
class MENDEX_EXPORT trControl {
 public:
  trControl();
  trControl(const trControl&) = delete;
  trControl& operator=(const trControl&) = delete;
  virtual ~trControl();

  /// Called after each action that changed the mesh, for a host to refresh its views: with 1 when triangles came, went or moved, with 0 when
  /// only their order, numbers or attributes changed. Not called by finish_undo(0). Does nothing here.
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
  /// or taken back. What was taken back is told to nobody: call triangle_update(1) then.
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

  // --- files --------------------------------------------------------------------------------------------------------------------------
  /// Reads a file by the extension of its name: mnx, mes, tri, stl, ast or kvx. A name that opens nothing is tried with each of these
  /// extensions, and then as it is, as a native file. What was found is said, or that nothing was.
  ///
  /// The mesh is replaced, the history belongs to the new file. A read that is interrupted leaves an empty mesh.
  /// @return the format, or tr_unknown_file when no file could be opened, and then nothing changed
  trFileType action_read(const utString& name);
  /// The same, adding to the mesh; it cannot be taken back, and the history stays as it is.
  trFileType action_append(const utString& name);
  /// Writes by the extension of the name; without one that is known the file becomes name.mnx, in the native format. Binary and ASCII STL
  /// move the model into the positive octant.
  void action_write(const utString& name);
  /// The same with nodes and elements numbered anew where the format has numbers.
  void action_rwrite(const utString& name);

  // --- repair: a negative tolerance is refused; none opens an undo bracket ------------------------------------------------------------
  /// Merges nodes within `tol`; see trTriBlock::unduplicate_nodes.
  void action_undup(double tol);
  /// Merges boundary nodes within `tol`; see trCycleArray::unduplicate_nodes.
  void action_bundup(double tol);
  void action_renumber();
  /// Up to `passes` passes of swapping edges of elements with an aspect below `tol`, until one finds nothing.
  void action_swap(double tol, int passes);
  /// Delete the elements of small height, and of small aspect.
  void action_height(double tol);
  void action_aspect(double tol);
  /// Deletes elements back to back with another (with `mode` both), then all but one of repeated elements.
  void action_cancelling(int mode);
  /// Deletes neighbours that enclose less than `tol` degrees.
  void action_overlapping(double tol);
  /// Deletes elements that cut others. A list that is not out of date is not searched again for another limit.
  void action_intersecting(int limit);
  /// Deletes elements that face away from `up`.
  void action_overhanging(const giUnitVec3& up);
  void action_orient();
  void action_reverse();
  /// Deletes elements of edges that more than two share: all with mode 0, else all but the two largest of each edge.
  void action_cure(int mode);
  /// Keeps what lies above (side 0) or below the plane across an axis of the host's workplane; see trTriBlock::slice.
  void action_slice(gi_Axis axis, double value, int side);
  void action_transform_triangles(const giXform3& x);

  /// 1 unless `tol` is negative; then says so.
  int check_tol(double tol) const;

  // --- boundaries: stitching, none of which opens an undo bracket ---------------------------------------------------------------------
  /// One pass of trCycleArray::stitch; any tolerance is taken.
  void action_stitch(double tol);
  /// One pass of trCycleArray::superstitch; a negative tolerance is refused.
  void action_staple(double tol);
  /// Passes until one changes nothing, at most `limit`; a negative tolerance is refused.
  void action_astaple(double tol, int limit);
  /// The same without the check. Returns the number of boundaries left; -1 when the limit was reached, -2 when the first pass changed
  /// nothing and boundaries are left.
  int auto_staple(double tol, int limit);
  /// Merges boundary nodes, deletes opposite and repeated triangles, orients when `orient` is set, and staples: once (Single), in up to
  /// `limit` passes (Repeat), or so for each tolerance from start to finish (Multi), until `target_boundaries` are left. `merge_first`
  /// merges all nodes before; `final_cancel` deletes opposite triangles at the end.
  void action_auto_stitch(trAutoMode mode, double start_tol, double finish_tol, double tol_step, int limit, int merge_first, int orient,
                          int final_cancel, int target_boundaries);

  // --- boundaries: holes. Filling and capping take the selected boundaries, and leave none selected ------------------------------------
  /// Select boundaries by number; a boundary that is selected already takes the picks, which choose the part of it to be filled.
  /// @see trCycleArray::select_cycles
  int select_cycles(const intcoSet& ids, double& average_length, int pick, const intcoSet& picks, int edge_start, int edge_end) const;
  int unselect_cycles(const intcoSet& ids, double& average_length) const;
  /// Closes by triangles on the nodes of the boundary and a centre. 1 when a boundary was filled; else says so.
  int action_fill(const int& curvature) const;
  /// Closes by triangles with new nodes at about `spacing`, which must be above 0; else says so and leaves all, `error` too, as it is.
  /// When nothing was tried, the open undo bracket is closed and taken back. `error` is that of the last boundary; 1 when one was tried.
  int action_cap(double spacing, at2PlaneError& error, const int& curvature) const;
  /// The same, each boundary in an undo bracket of its own, "fill_hole": call it outside any. Boundaries that failed are selected again,
  /// with their picks. `error` is that of the one that failed, 6 when several did, 0 where none came so far as to be triangulated.
  /// A spacing that is not above 0 is refused as at2_bad_length. Interrupted, it takes all of them back; without the full history,
  /// the last. 1 when any was closed.
  int action_cap_ext(double spacing, int curvature, at2PlaneError& error);
  /// Selects the boundaries whose start nodes are keys of the table, with the picks of the saved cycles that they map to.
  void restore_selection_data(const intintcoTable& start_nodes, const trCycleArray& saved);

  // --- exchange with the host -----------------------------------------------------------------------------------------------------------
  /// Replaces the mesh by the host's: points, triangles that are not masked, colours. Host points and triangles count from 0; triangles
  /// that name points which are not there are passed over. The history is forgotten. A pool without points or triangles gives none. Of a
  /// trTriBlock what is valid is taken; the controller's own block is left as it is.
  void action_fill_triblock(coFeaturePool& pool);
  /// Adds the host's mesh to the mesh; to an empty one as a fill. The history is forgotten.
  void action_append_triblock(coFeaturePool& pool);
  /// The colours of the host's triangles for the mesh as filled from the same pool.
  void action_fill_triblock_colours(coFeaturePool& pool);

 protected:
  struct FileFormat;
  static const FileFormat format_table[tr_unknown_file];

  trFileType read_or_append(const utString& name, int append);
  void write_or_rwrite(const utString& name, int rwrite);
  /// By the end of the name, in the order of the table; upper case is not recognised.
  static trFileType recognize_extension(const char* name);
  std::FILE* open_reader_file(const utString& name, trFileType& type);
  std::FILE* open_writer_file(const utString& name, trFileType& type);
  int read_mnx(std::FILE* file, int append);
  int read_mes(std::FILE* file, int append);
  int read_tri(std::FILE* file, int append);
  int read_stl(std::FILE* file, int append);
  int read_ast(std::FILE* file, int append);
  int read_kvx(std::FILE* file, int append);
  int write_mnx(std::FILE* file);
  int write_mes(std::FILE* file);
  int write_tri(std::FILE* file);
  int write_stl(std::FILE* file);
  int write_ast(std::FILE* file);
  int write_kvx(std::FILE* file);

  /// Copies the cycles of those numbers into `saved`; the table maps their start nodes to their places there.
  void save_selection_data(const intcoSet& ids, intintcoTable& start_nodes, trCycleArray& saved) const;
  /// Deletes small elements (0) or thin ones.
  void height_aspect(double tol, int which);

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
  bool check_auto_stitch(trAutoMode mode, double start_tol, double finish_tol, double tol_step, int limit) const;
  void clean_boundaries(double tol, int orient);
  static const char* extension_of(trFileType type);
  std::FILE* search_reader_file(const utString& name, utString& found, trFileType& type);
  void delete_listed(trElementList& list);
  void take_host_mesh(coFeaturePool& pool);
  void append_mesh(coFeaturePool& pool);
  void select_failed(const intcoSet& failed);

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
