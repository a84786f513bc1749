#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "platform/containers/owning_ptr.h"
#include "platform/containers/shared_ptr.h"

namespace {

struct Counted {
  Counted() { ++alive; }
  Counted(const Counted&) = delete;
  ~Counted() { --alive; }
  static int alive;
};
int Counted::alive = 0;

TEST(OwningPointer, DeletesExactlyOnce) {
  {
    coPrg<Counted> owner(new Counted);
    Counted* raw = owner.release();
    EXPECT_EQ(Counted::alive, 1);
    const Counted* constant = raw;
    owner = constant;  // a pointer to const is taken over all the same
    owner.become(constant);
    EXPECT_EQ(Counted::alive, 1);
    owner.become(new Counted);
    EXPECT_EQ(Counted::alive, 1);

    coPrg<Counted> other(new Counted);
    Counted* second = other.get();
    owner.swap(other);
    EXPECT_EQ(owner.get(), second);
    other.delete_pointer();
    other.delete_pointer();
    EXPECT_EQ(Counted::alive, 1);

    other = std::move(owner);
    EXPECT_EQ(owner.get(), nullptr);
    EXPECT_EQ(other.get(), second);
    coPrg<Counted>& alias = other;
    other = std::move(alias);
    EXPECT_EQ(other.get(), second);
    coPrg<Counted> moved(std::move(other));
    moved.reset();
    EXPECT_EQ(Counted::alive, 0);
    moved.become(new Counted);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(SharedPointer, LastReferenceDeletesAnOwnedObject) {
  coPrf<Counted> first(new Counted);
  coPrf<Counted> second = first;
  const std::shared_ptr<Counted> outside = second;
  EXPECT_EQ(first.external(), 0);
  EXPECT_EQ(outside.use_count(), 3);
  first.reset();
  second.reset();
  EXPECT_EQ(Counted::alive, 1);
  coPrf<Counted> back(outside);
  EXPECT_EQ(back.get(), outside.get());
  EXPECT_EQ(outside.use_count(), 2);
}

TEST(SharedPointer, ExternalObjectOutlivesItsReferences) {
  ASSERT_EQ(Counted::alive, 0);
  {
    Counted host_owned;
    {
      coPrf<Counted> first(coPrfExtern{}, &host_owned);
      coPrf<Counted> second(static_cast<std::shared_ptr<Counted>>(first));
      EXPECT_EQ(first.external(), 1);
      EXPECT_EQ(second.external(), 1);
    }
    EXPECT_EQ(Counted::alive, 1);
  }
  EXPECT_EQ(Counted::alive, 0);
}

TEST(SharedPointer, OtherDeletersAreKeptAndAreNotExternal) {
  int deletions = 0;
  {
    coPrf<Counted> shared(std::shared_ptr<Counted>(new Counted, [&](Counted* p) {
      ++deletions;
      delete p;
    }));
    EXPECT_EQ(shared.external(), 0);
  }
  EXPECT_EQ(deletions, 1);
}

TEST(SharedPointer, NullIsNeverExternal) {
  EXPECT_EQ(coPrf<Counted>().external(), 0);
  EXPECT_EQ(coPrf<Counted>(nullptr).external(), 0);
  EXPECT_EQ(coPrf<Counted>(coPrfExtern{}, nullptr).external(), 0);
}

}  // namespace
