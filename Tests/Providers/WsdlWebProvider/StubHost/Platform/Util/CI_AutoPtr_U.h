#pragma once

template <typename T>
class CI_AutoPtr_U {
  public:
    CI_AutoPtr_U(CI_AutoPtr_U&& other);
    ~CI_AutoPtr_U();

    T* operator->() const;
};
