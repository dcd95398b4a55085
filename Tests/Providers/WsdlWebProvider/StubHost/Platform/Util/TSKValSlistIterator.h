#pragma once

#include "Platform/Util/TSKValSlist.h"

template <typename T>
class TSKValSlistIterator {
  public:
    explicit TSKValSlistIterator(const TSKValSlist<T>& list);

    bool operator()();
    const T& key() const;
};
