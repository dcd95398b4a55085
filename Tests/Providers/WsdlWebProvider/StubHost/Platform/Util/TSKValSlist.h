#pragma once

template <typename T>
class TSKValSlist {
  public:
    TSKValSlist();
    ~TSKValSlist();

    void append(const T& value);
    unsigned long entries() const;
};
