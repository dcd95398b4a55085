#pragma once

namespace urma {

template <typename T>
class Iterator {
  public:
    virtual bool hasCurrent() const = 0;
    virtual T current() const = 0;
    virtual void advance() = 0;
};

}  // namespace urma
