#include "ObjectManager/Commands/Check/DocumentCheck.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <nlohmann/json.hpp>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Base/Utf8.h"
#include "ObjectManager/Commands/DocumentRequest.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Inspection/ClassInspector.h"
#include "ObjectManager/Inspection/DocumentInspector.h"

namespace Commands {

namespace {

using Inspection::Finding;
using Inspection::FindingKind;

// The name of a class that is left out may be the very thing that is too large.
std::string shortened(std::string_view name) {
    constexpr std::size_t kMaxBytes = 200;
    if (name.size() <= kMaxBytes)
        return std::string(name);
    return std::string(name.substr(0, Base::startOfCharacter(name, kMaxBytes))) + "...";
}

// Checks in several threads, and collects what they find.
class Checker {
  public:
    explicit Checker(const Host::MemoryClient& client) : client_(client) {}

    void check(const Repository::CimNamespace& nameSpace, const Repository::CimClass& cimClass) {
        std::vector<Finding> found = Inspection::inspectClass(cimClass);
        inspectDocument(nameSpace, cimClass, ".xsd", Inspection::inspectSchema, found);
        inspectDocument(nameSpace, cimClass, ".wsdl", Inspection::inspectWsdl, found);
        for (Finding& finding : found) {
            finding.nameSpace = nameSpace.name().data();
            finding.className = cimClass.name().data();
        }
        const std::lock_guard lock(mutex_);
        std::move(found.begin(), found.end(), std::back_inserter(findings_));
    }

    void addOmitted(const Repository::CimNamespace& nameSpace) {
        for (const Repository::OmittedClass& omitted : nameSpace.omittedClasses())
            findings_.push_back({.kind = FindingKind::kTooLarge,
                                 .nameSpace = nameSpace.name().data(),
                                 .className = shortened(omitted.name),
                                 .member = shortened(omitted.member),
                                 .message = omitted.reason});
    }

    CheckResult takeResult() {
        CheckResult result;
        result.documents = documents_;
        result.bytes = bytes_;
        std::sort(findings_.begin(), findings_.end(), Inspection::isBefore);
        // A parameter that goes in and out stands in a schema twice.
        findings_.erase(std::unique(findings_.begin(), findings_.end()), findings_.end());
        result.findings = std::move(findings_);
        return result;
    }

  private:
    using Inspect = std::vector<Finding> (*)(std::string_view name, std::string_view text);

    void inspectDocument(const Repository::CimNamespace& nameSpace,
                         const Repository::CimClass& cimClass, const char* extension,
                         Inspect inspect, std::vector<Finding>& found) {
        const TSKString name = cimClass.name() + extension;
        const RequestedDocument document = requestDocument(client_, nameSpace, name);
        if (!document.response) {
            Finding failure;
            failure.kind = FindingKind::kNoDocument;
            failure.message = document.failure;
            found.push_back(std::move(failure));
            return;
        }
        const std::string_view text = document.response->body();
        ++documents_;
        bytes_ += text.size();
        const std::vector<Finding> faults = inspect(name, text);
        found.insert(found.end(), faults.begin(), faults.end());
    }

    const Host::MemoryClient& client_;
    std::atomic<std::size_t> documents_ = 0;
    std::atomic<std::size_t> bytes_ = 0;
    std::mutex mutex_;
    std::vector<Finding> findings_;  // guarded by mutex_
};

}  // namespace

std::size_t CheckResult::countErrors() const {
    return static_cast<std::size_t>(
        std::count_if(findings.begin(), findings.end(),
                      [](const Finding& finding) { return Inspection::isError(finding.kind); }));
}

CheckResult checkDocuments(const Repository::ClassRepository& repository,
                           const Host::MemoryClient& client, unsigned jobs,
                           const std::function<void()>& onClassDone) {
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::pair<const Repository::CimNamespace*, const Repository::CimClass*>> classes;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces()) {
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes())
            classes.emplace_back(&nameSpace, cimClass.get());
    }
    Checker checker(client);
    std::size_t omitted = 0;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces()) {
        checker.addOmitted(nameSpace);
        omitted += nameSpace.omittedClasses().size();
    }
    workInParallel(classes.size(), jobs, [&](std::size_t number) {
        checker.check(*classes[number].first, *classes[number].second);
        onClassDone();
    });
    CheckResult result = checker.takeResult();
    result.namespaces = repository.namespaces().size();
    result.classes = classes.size() + omitted;
    result.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return result;
}

std::string toText(const CheckResult& result) {
    std::string text;
    for (const Finding& finding : result.findings)
        text += Inspection::toText(finding) + "\n";
    const std::size_t errors = result.countErrors();
    text += Base::counted(result.classes, "class", "classes") + " in " +
            Base::counted(result.namespaces, "namespace", "namespaces") + ", " +
            Base::counted(result.documents, "document", "documents") + ", " +
            Base::bytesText(result.bytes) + ", " + Base::secondsText(result.seconds) + ": " +
            Base::counted(errors, "error", "errors") + ", " +
            Base::counted(result.findings.size() - errors, "warning", "warnings") + "\n";
    return text;
}

std::string toJson(const CheckResult& result) {
    nlohmann::ordered_json findings = nlohmann::ordered_json::array();
    for (const Finding& finding : result.findings) {
        findings.push_back({
            {"severity", Inspection::isError(finding.kind) ? "error" : "warning"},
            {"kind", Inspection::nameOf(finding.kind)},
            {"namespace", finding.nameSpace},
            {"class", finding.className},
            {"member", finding.member},
            {"message", finding.message},
        });
    }
    const std::size_t errors = result.countErrors();
    const nlohmann::ordered_json json = {
        {"namespaces", result.namespaces},
        {"classes", result.classes},
        {"documents", result.documents},
        {"bytes", result.bytes},
        {"seconds", result.seconds},
        {"errors", errors},
        {"warnings", result.findings.size() - errors},
        {"findings", findings},
    };
    return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace Commands
