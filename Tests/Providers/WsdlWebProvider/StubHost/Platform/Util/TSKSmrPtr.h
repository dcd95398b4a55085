#pragma once

template <typename T>
class TSKSmrPtr {
  public:
    TSKSmrPtr();
    explicit TSKSmrPtr(T* object);
    TSKSmrPtr(const TSKSmrPtr& other);
    ~TSKSmrPtr();

    T* operator->() const;
    T& operator*() const;
    explicit operator bool() const;
};
