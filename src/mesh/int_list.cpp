#include "mesh/int_list.h"

trIntList& trIntList::operator=(trIntList& other) {
  if (this == &other) return *this;
  clear();
  while (!other.empty()) insert_front(other.remove_front());
  return *this;
}

int trIntList::remove(int v) {
  Link before = 0;
  for (Link link = head(); link != 0; before = link, link = coCellPool::next(link)) {
    if (coCellPool::value(link) != v) continue;
    unlink(link, before);
    count_edit();
    return 1;
  }
  return 0;
}

int trIntList::member(int v) {
  if (!remove(v)) return 0;
  insert_front(v);
  return 1;
}
