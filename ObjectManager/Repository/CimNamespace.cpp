#include "ObjectManager/Repository/CimNamespace.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Repository/DocumentSize.h"

namespace Repository {

namespace {

// Makes each class after its superclass.
class ClassMaker {
  public:
    ClassMaker(std::vector<Mof::ClassDeclaration>& declarations, const Options& options)
        : declarations_(declarations), options_(options), classes_(declarations.size()) {
        names_.reserve(declarations.size());
        for (const Mof::ClassDeclaration& declaration : declarations)
            names_.push_back(declaration.name.text);
        places_.reserve(declarations.size());
        for (std::size_t place = 0; place < names_.size(); ++place)
            places_.emplace(names_[place], place);
    }

    std::vector<TSKSmrPtr<CimClass>> makeAll() {
        for (std::size_t place = 0; place < classes_.size(); ++place)
            (void)make(place);
        return std::move(classes_);
    }

  private:
    const TSKSmrPtr<CimClass>& make(std::size_t place) {
        Mof::ClassDeclaration& declaration = declarations_[place];
        if (!classes_[place]) {
            TSKSmrPtr<CimClass> superclass;
            if (!declaration.superclass.text.isEmpty())
                superclass = make(places_.at(declaration.superclass.text));
            classes_[place] =
                TSKSmrPtr<CimClass>::make(std::move(declaration), std::move(superclass), options_);
        }
        return classes_[place];
    }

    std::vector<Mof::ClassDeclaration>& declarations_;
    const Options& options_;
    std::vector<TSKSmrPtr<CimClass>> classes_;
    std::vector<TSKString> names_;  // which the places are found by while declarations are used up
    Base::NameMap<std::size_t> places_;
};

OmittedClass omitted(const CimClass& cimClass, const Options& options) {
    LargestPart part = largestPartOf(cimClass);
    return {.name = cimClass.name(),
            .member = std::move(part.member),
            .reason = "its documents would have up to " +
                      Base::bytesText(documentSizeOf(cimClass)) + ", " + part.description +
                      " alone " + Base::bytesText(part.size) + "; at most " +
                      Base::bytesText(options.maxDocumentSize) +
                      " are allowed (repository.max_document_size)"};
}

}  // namespace

CimNamespace::CimNamespace(TSKString name, std::vector<Mof::ClassDeclaration>&& declarations,
                           const Options& options)
    : name_(std::move(name)), classes_(ClassMaker(declarations, options).makeAll()) {
    std::sort(classes_.begin(), classes_.end(),
              [](const TSKSmrPtr<CimClass>& left, const TSKSmrPtr<CimClass>& right) {
                  return left->name() < right->name();
              });
    std::erase_if(classes_, [&](const TSKSmrPtr<CimClass>& cimClass) {
        const bool isTooLarge = documentSizeOf(*cimClass) > options.maxDocumentSize;
        if (isTooLarge)
            omittedClasses_.push_back(omitted(*cimClass, options));
        return isTooLarge;
    });
    places_.reserve(classes_.size());
    for (std::size_t place = 0; place < classes_.size(); ++place)
        places_.emplace(classes_[place]->name(), place);
}

TSKSmrPtr<CimClass> CimNamespace::findClass(const TSKString& name) const {
    const auto found = places_.find(name);
    return found == places_.end() ? TSKSmrPtr<CimClass>() : classes_[found->second];
}

}  // namespace Repository
