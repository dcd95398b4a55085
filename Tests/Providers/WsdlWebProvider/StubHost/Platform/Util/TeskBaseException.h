#pragma once

class TeskBaseException {
  public:
    int getErrorCode() const;
};
