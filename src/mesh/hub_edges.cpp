#include "mesh/hub_edges.h"

#include <vector>

void HubEdges::enter_front(Hub& hub, Link link, Link old_head) {
  const auto found = hub.first.find(coCellPool::value(link));
  if (found == hub.first.end()) {
    hub.first[coCellPool::value(link)] = link;
  } else {
    hub.same_next[link] = found->second;
    found->second = link;
  }
  if (old_head != 0) hub.before[old_head] = link;
  hub.head = link;
}

void HubEdges::build(Hub& hub, const trIntList& list) const {
  hub = Hub();
  std::vector<Link> links;
  for (Link link = list.head(); link != 0; link = coCellPool::next(link)) links.push_back(link);
  Link behind = 0;
  for (auto it = links.rbegin(); it != links.rend(); behind = *it, ++it) enter_front(hub, *it, behind);
  hub.edits = edits();
}

HubEdges::Hub& HubEdges::current(int node, const trIntList& list) {
  Hub& hub = hubs_[node];
  if (hub.head != list.head() || hub.edits != edits()) build(hub, list);
  return hub;
}

bool HubEdges::remove(int node, trIntList& list, int v) {
  Hub& hub = current(node, list);
  const auto found = hub.first.find(v);
  if (found == hub.first.end()) return false;
  const Link link = found->second;
  const Link after = coCellPool::next(link);
  const auto same = hub.same_next.find(link);
  if (same == hub.same_next.end()) {
    hub.first.erase(found);
  } else {
    found->second = same->second;
    hub.same_next.erase(same);
  }
  const auto before = hub.before.find(link);
  const Link predecessor = before == hub.before.end() ? 0 : before->second;
  if (before != hub.before.end()) hub.before.erase(before);
  if (after != 0) {
    if (predecessor == 0) {
      hub.before.erase(after);
    } else {
      hub.before[after] = predecessor;
    }
  }
  list.unlink(link, predecessor);
  hub.head = list.head();
  return true;
}

void HubEdges::insert_front(int node, trIntList& list, int v) {
  Hub& hub = current(node, list);
  const Link old_head = list.head();
  if (list.insert_front(v)) enter_front(hub, list.head(), old_head);
}
