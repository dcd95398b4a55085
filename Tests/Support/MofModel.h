#pragma once

#include <string_view>

#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Repository/Options.h"
#include "Platform/Util/TSKSmrPtr.h"

/// Classes that a test states in MOF, held in the namespace "root/test". The qualifiers of the
/// sample model are declared.
class MofModel {
  public:
    /// Errors: std::invalid_argument with what the compiler says, when there is something wrong.
    explicit MofModel(std::string_view mof, const Repository::Options& options = {});

    [[nodiscard]] const TSKSmrPtr<Repository::ClassRepository>& repository() const noexcept {
        return repository_;
    }
    [[nodiscard]] const Repository::CimNamespace& nameSpace() const {
        return repository_->namespaces().front();
    }

    /// Errors: std::invalid_argument when there is no such class.
    [[nodiscard]] const Repository::CimClass& cimClass(const char* name) const;

  private:
    TSKSmrPtr<Repository::ClassRepository> repository_;
};
