#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "mesh/edge_connection.h"
#include "mesh/loop_it.h"
#include "mesh/mesh_arrays.h"
#include "mesh/slice_status.h"
#include "platform/common/workplane.h"
#include "platform/containers/number_arrays.h"
#include "platform/geometry/angle.h"
#include "platform/geometry/box3.h"
#include "platform/geometry/unit_vec3.h"
#include "platform/geometry/xform3.h"
#include "platform/surface/zrk_surf.h"
#include "platform/utilities/export.h"

class ElementListBatch;
class HubEdges;
class SurvivorMap;
class trUndo;

/// A direction that stands for none.
MENDEX_EXPORT giVector3 tr_no_direction();

/// The mesh: numbered nodes and numbered triangular elements, with optional node normals, node attributes and element colours.
///
/// Nodes and elements are numbered from 1; slot 0 of each array exists and is always invalid. Deleting keeps the number; only
/// `renumber` closes the gaps. Counts of arrays are the highest number plus one. Addresses of entries never move.
/// Every primitive edit first reports each entity that it is about to change to the attached undo record.
/// Loops over the mesh poll for interruption once per entry and stop quietly, leaving what they have done; derived state that was
/// being built is then marked as not built.
/// Operations that are const but fill caches edit through self(): never define an object of this class as const.
/// Numbers handed in are not checked unless an operation says so.
/// Where memory runs out, an operation ends as if it had been interrupted, after a line that says so; a primitive edit then makes nothing.
class MENDEX_EXPORT trTriBlock : public trMeshArrays {
 public:
  trTriBlock();
  ~trTriBlock() override;
  // --- flags and settings, in the order of their layout -------------------------------------------------------------------------
  int edges_built = 0;                  ///< `a_edges` of the nodes reflect every valid element
  int changed = 1;                      ///< the mesh was changed since the host last looked
  mutable int elements_referenced = 1;  ///< `elements` of the nodes reflect every valid element
  int normals_built = 0;                ///< the normals feature holds a normal for every node
  int verbose = 0;                      ///< verbose reporting
  trUndo* undo = nullptr;               ///< the record that edits report to; null when none is recording; not owned
  double undup_tol = 0.0;               ///< tolerance of the last completed node merge; 0 after any change of node positions
  int curvature_adjust = 0;             ///< new nodes may be moved onto the fitted surface
  zrkSurfPtr surface;                   ///< the surface fitted for curved filling and capping
  int use_workplane = 0;                ///< coordinates are measured in the workplane
  ccWorkplane workplane;
  // --- access -------------------------------------------------------------------------------------------------------------------
  /// The element of that number; grows the array to hold it, with deleted elements.
  trElement& access_element(int e);
  /// Empties the block: frees its pages, drops attributes and colours, and makes node 0 and element 0 anew.
  void clear();
  /// Grows the node and coordinate arrays to hold i and points node i at its coordinates.
  void init_node(int i);
  /// Walks the elements of a node; builds the element lists first where needed.
  trIntListIT node_elements(int i);

  /// Number of valid nodes or elements; 0 when interrupted. Cost: O(n), n being the array's count.
  int valid_nodes() const;
  int valid_elements() const;
  // --- node attributes, colours, box, workplane -----------------------------------------------------------------------------------
  /// Sets how many attribute values a node has (1 to 5), making the attributes when absent; 0 drops them.
  void set_node_data_size(int n);

  /// The first colour ever set becomes the default, which elements beyond the coloured ones have. -1: no colour.
  void set_element_colour(int e, int colour);
  /// Sets every element's colour, and the default, to -1, when the block has colours.
  void clear_colours();

  /// Bounding box of the valid nodes, in the workplane when one is in use; recomputed when stale.
  const giBox3& box() const;
  void compute_box();
  /// Marks edges and merge tolerance (and, with `geometry`, the box) stale and the mesh changed.
  void alter(int geometry);
  void force_changed_status(int value);

  void enable_workplane(int on);
  /// Takes over the workplane's axes; whether it is used stays as it is.
  void set_workplane(const ccWorkplane& plane);
  /// Into the workplane, when one is in use and its origin is valid; else unchanged.
  giPoint3 check_use_workplane(const giPoint3& p) const { return maps_workplane() ? workplane.workplane().to_work(p) : p; }
  giVector3 check_use_workplane(const giVector3& v) const { return maps_workplane() ? workplane.workplane().to_work(v) : v; }
  /// Back to world coordinates, on the same condition.
  giPoint3 check_unapply_workplane(const giPoint3& p) const { return maps_workplane() ? workplane.workplane().to_world(p) : p; }
  // --- primitive edits: each reports what it changes to `undo` --------------------------------------------------------------------
  /// Makes a node and returns its number. Drops all node attributes of the block.
  int generate_node(const giPoint3& p, const giVector3& n, int adjust);
  /// Makes a node on the segment from a to b at parameter t (measured in the workplane), adjusted to the fitted surface along n
  /// when adjustment is on; attributes are interpolated. Returns its number.
  int interpolate_node(int a, int b, double t, const giVector3& n = tr_no_direction());
  /// Places node i, making it and, as deleted ones, all numbers missing before it. A valid node keeps the lists that are current.
  /// Coordinates of plus or minus the largest double, which mark invalid points, are moved by one unit in the last place.
  void set_node(int i, const giPoint3& p);
  /// Deletes a node; elements that use it are not touched.
  void delete_node(int i);

  /// Makes element (a, b, c) and returns its number; -1 when two numbers are equal. Nodes are not checked.
  int generate(int a, int b, int c);
  /// Makes (a, b, c); when the neighbour across its longest edge p-q asks for it, both are replaced by the other split. The element
  /// lists must be current. Returns the last element made.
  int generate3(int a, int b, int c);
  /// Splits the quadrilateral by the better diagonal; returns the second element.
  int generate4(int a, int b, int c, int d);
  /// Writes element e, deleting what it held and making, as deleted ones, all numbers missing before it.
  void set_element(int e, int a, int b, int c);
  /// Deletes an element. It stays in its nodes' `elements`; walkers skip it.
  void delete_element(int e);
  /// (a, b, c) becomes (a, c, b).
  void reverse_element(int e);
  /// Splits e by a new node on its longest edge; see the source for the rule.
  void split_element(int e);

  /// Exactly `set_node` of the next three numbers and `set_element` of the next element, at the cost of a copy.
  void append_facet(const giPoint3 corners[3]);
  /// Exactly `set_node` of the next number, and `set_element` of the next, at the cost of a copy while no edges are built.
  void append_node(const giPoint3& p);
  void append_element(int a, int b, int c);

  void delete_elements(const intcoPageArr& list);
  /// Deletes elements through `delete_element`, in the order of the set; numbers outside the block are passed over. Returns 1.
  int delete_in_place(const intcoSet& elements) override;
  void split_elements(const intcoPageArr& list);
  /// Deletes every valid element with two equal nodes.
  void delete_collapsed_elements();
  /// Reverses every valid element.
  void reverse();
  // --- derived topology -----------------------------------------------------------------------------------------------------------
  /// Records the directed edge a to b, or cancels its opposite when that is recorded. An invalid end is fatal: the process ends
  /// with exit code 8.
  int link(int a, int b);
  /// The same without the test: -1 when the opposite was cancelled, 1 when the edge was recorded at the front of a's list.
  int link_simple(int a, int b);
  void reset_edges();
  /// Links the edges of all valid elements, unless that is done. Cost: O(n).
  void build_edges();
  /// Moves every entry of `a_edges` into `d_edges`, node by node, reversing the order.
  void a_to_d();
  /// Fills the element lists of all nodes, newest first, unless that is done. Cost: O(n).
  void reference_elements() const;
  /// Re-points element corners that name a deleted node k to map[k]; a corner without an entry is left alone. Edges stay.
  void reference_new_nodes(const intcoPageArr& map);

  /// Deletes elements that have an opposite twin, and with `both` the twin too. 1 when something was deleted.
  int cancelling(int both) { return remove_repeats(0, both); }
  /// Deletes all but the highest-numbered of elements with the same nodes in the same orientation. 1 when something was deleted.
  int repeating() { return remove_repeats(1, 0); }
  int remove_repeats(int same, int both);

  /// Closes the gaps that deletions left. Pages stay allocated and `undup_tol` is kept. Interrupted, it stops where it is.
  void renumber();
  /// Moves every valid node; counts as no change.
  void transform(const giXform3& x);
  // --- measures -------------------------------------------------------------------------------------------------------------------
  /// Four times the squared area of an element.
  double area_element(int e) const;
  double surface_area() const;
  /// Enclosed volume of a closed mesh that faces outward; negative when it faces inward.
  double volume() const;
  /// Area, volume over the lowest z, centre of mass, least and mean aspect ratio, in the workplane when one is in use.
  void properties(double& area, double& vol, giPoint3& centre, double& min_aspect, double& mean_aspect) const;
  void compute_node_normals();
  /// Least scalar product of the unit normals of consistently oriented neighbours, from -1 to 1; `count` receives how many pairs,
  /// counted from both sides, lie below limit.
  double min_dotp(double limit, int& count) const;
  /// Mean distance between consecutive nodes of an open chain; 0 for fewer than two.
  double node_average_distance(const intcoPageArr& chain) const;
  // --- slicing --------------------------------------------------------------------------------------------------------------------
  /// Keeps what lies above the plane at `value` across an axis of the workplane in use (side 0), or below it (any other side). Elements
  /// across the plane are cut, and new nodes on it merged within `tol`. Nodes on the plane stay.
  /// @return 1 when an element was cut or deleted; 0 when none was, and when interrupted: what was done stays
  int slice(gi_Axis axis, int side, double value, double tol);
  // --- merging --------------------------------------------------------------------------------------------------------------------
  /// Merges nodes that lie within `tol` of each other, inclusive; deletes elements that collapse.
  ///
  /// Nodes are taken in ascending number; each is compared with the nodes kept before it, and of several the lowest survives.
  /// Survivors keep their number and are pairwise farther apart than tol; chains do not collapse further. Attributes are averaged
  /// by weight. A tolerance not above that of the last merge returns 0 at once, so 0 never merges.
  /// @return 1 when a node was merged; 0 when none was, or when interrupted (nodes deleted so far stay deleted)
  /// Cost: O(n) expected time; about 40 bytes a kept node.
  int unduplicate_nodes(double tol);
  // --- defects: `out` receives element numbers; interrupted searches leave it as far as filled --------------------------------------
  /// Elements on edges that more than two elements share, sorted: all of them, or with `mode` all but the two largest of each edge.
  /// Cost: O(n).
  void find_sick(intcoPageArr& out, int mode) const;
  /// The edges that more than two elements share, with their elements. With `mode`, every number is one less, as in host pools.
  void find_sick(coPageArr<trEdgeConnection>& out, int mode) const;
  /// Deletes what `find_sick` lists. 1 when that was anything; 0 also when interrupted (what was deleted stays deleted).
  int cure_sick(int mode);
  /// Deletes loose flaps on edges that more than two elements share; returns how many.
  int cure_sick_fins();
  /// Elements whose height over the longest edge (or, with `aspect`, whose ratio of height to longest edge) is below `tol`, ascending.
  /// Marks the mesh changed when there are any. Returns the least measure, 0 when there is no element. Cost: O(n).
  double find_thin(double tol, int aspect, intcoPageArr& out) const;
  /// Elements that face against `up`, ascending; upright ones are not listed. Cannot be stopped once it runs. Cost: O(n).
  void find_overhanging(intcoPageArr& out, const giUnitVec3& up) const;
  /// Consistently directed neighbours that enclose an angle below `tol`, sorted. Flat neighbours enclose 180 degrees, folded ones 0.
  /// Returns the sharpest angle, 180 degrees when there are no neighbours. Cost: O(n).
  giAngle find_overlapping(const giAngle& tol, intcoPageArr& out) const;
  /// Elements that cut through others: elements that share an edge never do, and lengths up to 1e-5 are as good as zero. They come in the
  /// order in which a search box by box leaves them, which depends on `limit`, the number of elements beyond which a box is divided;
  /// ascending where there are very many more pairs than elements. Which are found does not depend on it.
  /// Cost: about n log n for a surface; some 150 bytes an element while it runs.
  void find_intersecting(intcoPageArr& out, int limit) const;
  /// Whether node n lies nearer than `tol` to the segment from s to e, with its foot strictly inside; `par` receives the parameter of
  /// the foot, unless s and e coincide.
  int check_height_get_par(int n, int s, int e, double tol, double& par) const;
  /// Swaps the longest edge of elements with an aspect ratio below `tol`, where the other diagonal is better. 1 when any was.
  int swap_elements(double tol);
  /// Orients each connected piece after its majority, then the whole mesh so that the topmost element faces up. 1 when an element was
  /// reversed. Cost: O(n).
  int orient_normals();
  /// The element at the highest node whose lower other corner is highest; -1 when there is none, -2 when interrupted.
  int find_top_element() const;
  // --- reports --------------------------------------------------------------------------------------------------------------------
  /// Draws the outlines of elements, as commands to a file that stays open.
  void picture_elements(std::FILE* file, const intcoPageArr& list) const;
  /// Prints the statistics. Register commands, and the shape statistics of `level` (also of verbose blocks), need a file, which stays
  /// open; `tol` is what the least height and aspect and the sharpest angle are compared with.
  void info(double tol, std::FILE* file, int level) const;
  // --- exchange with a host --------------------------------------------------------------------------------------------------------
  /// Closes the gaps in the numbers, where there are any, and appends nodes, elements and, while they are current, node normals to the
  /// host's arrays, numbers counting from 0; also its points of the plane, where the block has any. Colours come at their element's
  /// number, where an element has one. `out` is meant to be empty: what it holds is not counted in the numbers.
  /// Renumbering cannot be taken back: reset the history after it. Interrupted, nothing is given. Cost: O(n).
  void get_giTriBlock(giTriBlock& out);
  // --- new nodes on a fitted surface ------------------------------------------------------------------------------------------------
  /// Fits a smooth surface to boundary nodes and to the ring of nodes round them, and lets new nodes move onto it. Null only switches
  /// that on, with the surface there is.
  /// @param option  handed on to the fitter, which knows none
  /// @return 0; -2 when no surface could be fitted; -1 when interrupted before. Progress: 30 % the ring, 70 % the surface.
  int enable_curvature_adjust(const intcoPageArr* boundary_nodes, int option) const;
  /// New nodes stay where they are made; frees the surface too when `free` is not 0.
  void disable_curvature_adjust(const int& free);
  /// q = p moved onto the fitted surface along `direction`, or to its closest point when there is none; -1 and q = p when
  /// adjustment is off; else the surface's answer, 0 for success.
  int apply_curvature_adjust_on_coords(const giPoint3& p, const giVector3& direction, giPoint3& q) const;
  /// Moves a node in the same way, and reports it to `undo`. 0, also when adjustment is off; -1 beyond the last node; -2 when the surface
  /// gave no point; -3 when the node is not valid.
  int apply_curvature_adjust_on_node(int node, const giVector3& direction) const;
  /// Appends the nodes of the elements round each node of the list to `out`, each once, those of the list left out. 0; -1 when
  /// interrupted. Cost: O(elements round the nodes).
  int get_surrounding_nodes(const intcoPageArr& nodes, intcoPageArr& out) const;
  /// The same for one node; what `exclude` names is left out.
  int get_surrounding_nodes(int node, intcoPageArr& out, const intcoPageArr* exclude) const;
  /// Makes rows of nodes on the lines from a0 to a1 and from b0 to b1, at about max_length on the longer, and unless `nodes_only` a
  /// ladder of triangles between them. The lists receive the new nodes. At most 10^6 segments; one, without new nodes, where max_length
  /// is not above 0.
  /// @return 1; 0 when a number is none of the block's, and then nothing was made
  int create_hole_subdivision(int a0, int a1, int b0, int b1, double max_length, intcoPageArr& a_nodes, intcoPageArr& b_nodes,
                              const giVector3& direction, int nodes_only) const;
  void free_surface() { surface.reset(); }

 protected:
  /// Fits `surface`; 0 for success.
  int create_gcm_surface(const giPoint3coPageArr& ring, const giPoint3coPageArr& boundary, int option);
  /// Makes a node; attributes of the block stay.
  int generate_node_private(const giPoint3& p, const giVector3& n, int adjust);

  /// Deletes, cuts or keeps one element by the sides of its corners.
  trSliceStatus slice_element(int e, int axis, double value, intcoPageArr& plane_nodes, double tol);
  void split_element(int e, int axis, double value, intcoPageArr& plane_nodes, double tol);

 private:
  friend class trControl;
  friend class trUndo;
  friend class trUndoElement;
  friend class trUndoNode;
  friend class trCycleArray;

  trTriBlock* self() const { return const_cast<trTriBlock*>(this); }
  void report_node(int i);
  void report_element(int e);
  // Node n's attributes averaged into those of k, where the block has any.
  void average_node_data(int k, int n);
  void mark_changed();
  // What an edit from outside the primitives makes stale: element lists and normals.
  void reset_derived_state();
  void place_node(int i, const giPoint3& p);
  void link_element(int a, int b, int c);
  void unlink_element(int a, int b, int c);
  void write_element(int e, int a, int b, int c);
  void grow_elements(int e);
  void make_room_for_node(int i);
  double lowest_corner_z() const;
  giVector3 attribute_or_mean_normal(int i, int data_size) const;
  std::vector<int> delete_duplicate_nodes(double tol, intcoPageArr& slots);
  int number_valid_nodes(intcoPageArr& map) const;
  int close_element_gaps(const intcoPageArr& map);
  void copy_colour(int to, int from);
  int close_node_gaps(const intcoPageArr& map);
  bool merge_plane_nodes(const intcoPageArr& plane_nodes, double tol);
  int cut_edge(int a, int b, int axis, double value, double tol);
  void enter_in_lists(int e) const;
  trNode& put_new_node(int i, const giPoint3& p);
  void note_new_nodes(int count);
  void append_points(const giPoint3coPageArr& points);
  void begin_triangles();
  void give_nodes(giTriBlock& out) const;
  void give_elements(giTriBlock& out) const;
  void give_colours(giTriBlock& out) const;
  void replace_nodes(const SurvivorMap& map);
  void announce_replacements(const SurvivorMap& map, const std::vector<char>& deleted, ElementListBatch& lists) const;
  bool maps_workplane() const { return use_workplane && !workplane.workplane().origin().invalid(); }
  giPoint3 node_in_workplane(int i) const { return check_use_workplane(point(i)); }

  std::unique_ptr<HubEdges> hubs_;       // pairing of half-edges at nodes with very many of them
  mutable giBox3 box_;                   // stale while empty
  std::int64_t edit_count_ = 0;          // primitive edits so far; normals are current only for the count they were made at
  std::int64_t normals_edit_count_ = 0;  // edit_count_ when the normals were computed
  std::int64_t topology_revision_ = 0;   // grows whenever `changed` becomes 1: shows changes that a later transform hides
  std::int64_t geometry_revision_ = 0;   // grows whenever a node moves: cached boxes compare it
};
