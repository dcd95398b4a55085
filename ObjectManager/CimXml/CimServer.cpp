#include "ObjectManager/CimXml/CimServer.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <optional>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/NamePattern.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/CimXml/ClassCollection.h"
#include "ObjectManager/CimXml/HttpClient.h"
#include "ObjectManager/CimXml/Requests.h"
#include "ObjectManager/CimXml/ResponseReader.h"
#include "Platform/Util/TeskStatusCode.h"

namespace CimXml {

namespace {

using Kind = ServerError::Kind;

std::string shown(std::string_view text) {
    return Base::quoted(Base::logText(text));
}

// Whether a server that says so may do the same in smaller pieces.
bool refusesOperation(const ServerError& error) noexcept {
    constexpr int kRefusals[] = {CIM_ERR_FAILED, CIM_ERR_NOT_SUPPORTED,
                                 CIM_ERR_SERVER_LIMITS_EXCEEDED};
    return error.kind() == Kind::kCimError &&
           std::ranges::count(kRefusals, error.getErrorCode()) > 0;
}

// Whether a namespace, or the class in it, is not there.
bool isMissing(const ServerError& error) noexcept {
    constexpr int kMissing[] = {CIM_ERR_INVALID_NAMESPACE, CIM_ERR_INVALID_CLASS, CIM_ERR_NOT_FOUND,
                                CIM_ERR_NOT_SUPPORTED};
    return error.kind() == Kind::kCimError &&
           std::ranges::count(kMissing, error.getErrorCode()) > 0;
}

// The namespace that an INSTANCENAME of CIM_Namespace names; empty where it names none.
std::string namespaceOf(const Element& instanceName) {
    for (const Element binding : instanceName.children()) {
        if (binding.tag() != Tag::kKeyBinding ||
            !Base::equalsIgnoringCase(binding.attribute(Attribute::kName).value_or(""), "Name"))
            continue;
        for (const Element value : binding.children()) {
            if (value.tag() == Tag::kKeyValue && isNamespaceName(value.text()))
                return std::string(value.text());
        }
    }
    return {};
}

}  // namespace

class CimServer::Implementation {
  public:
    explicit Implementation(ServerOptions options)
        : options_(std::move(options)), http_(options_) {}

    [[nodiscard]] const std::string& name() const noexcept { return http_.serverName(); }

    [[nodiscard]] std::vector<std::string> namespaces(const std::stop_token& stop) {
        http_.restartTime();
        for (const std::string& interop : options_.interopNamespaces) {
            std::optional<std::vector<std::string>> names = namespacesIn(interop, stop);
            if (names)
                return std::move(*names);
        }
        throw ServerError(Kind::kCimError,
                          name() + ": the server has none of the namespaces " +
                              Base::joined(options_.interopNamespaces, ", ", " and ") +
                              " that would name the others",
                          CIM_ERR_NOT_FOUND);
    }

    [[nodiscard]] NamespaceContent read(const std::string& nameSpace,
                                        const std::vector<std::string>& patterns,
                                        const std::stop_token& stop,
                                        std::optional<std::uint64_t> known) {
        requireNamespaceName(nameSpace);
        http_.restartTime();
        ClassCollection classes(name() + ": " + nameSpace, options_.limits);
        readQualifiers(classes, nameSpace, stop);
        if (!readAllClasses(classes, nameSpace, stop))
            readClassesByName(classes, nameSpace, patterns, stop);
        const std::uint64_t digest = classes.digest();
        if (digest == known)
            return {.compilation = {}, .digest = digest};
        return {.compilation = classes.declarations(patterns), .digest = digest};
    }

  private:
    using OnResult = ResponseReader::OnResult;

    void requireNamespaceName(const std::string& text) const {
        if (!isNamespaceName(text))
            throw ServerError(Kind::kOptions, shown(text) + " is not the name of a namespace");
    }

    [[nodiscard]] HttpClient::Call call(Request request, OnResult onResult) const {
        const auto reader = std::make_shared<ResponseReader>(request.operation, options_.limits,
                                                             std::move(onResult));
        return {.request = std::move(request),
                .onBytes = [reader](std::string_view bytes) { reader->read(bytes); },
                .onEnd = [reader] { reader->finish(); }};
    }

    void perform(Request request, const OnResult& onResult, const std::stop_token& stop) {
        std::optional<HttpClient::Call> only = call(std::move(request), onResult);
        http_.perform([&] { return std::exchange(only, std::nullopt); }, stop);
    }

    // Nothing where the server does not have that namespace, or has no namespaces in it.
    std::optional<std::vector<std::string>> namespacesIn(const std::string& interop,
                                                         const std::stop_token& stop) {
        requireNamespaceName(interop);
        std::vector<std::string> names;
        try {
            perform(
                enumerateInstanceNames(interop, "CIM_Namespace"),
                [&](const Element& instanceName) {
                    std::string found = namespaceOf(instanceName);
                    if (!found.empty())
                        names.push_back(std::move(found));
                },
                stop);
        } catch (const ServerError& error) {
            if (!isMissing(error))
                throw;
        }
        if (names.empty())
            return std::nullopt;
        std::ranges::stable_sort(names, {}, [](const std::string& found) {
            return Base::lowerCase(std::string_view(found));
        });
        names.erase(std::unique(names.begin(), names.end(), Base::equalsIgnoringCase), names.end());
        return names;
    }

    // A server that has no such operation sends types and flavors with each qualifier.
    void readQualifiers(ClassCollection& classes, const std::string& nameSpace,
                        const std::stop_token& stop) {
        try {
            perform(
                enumerateQualifiers(nameSpace),
                [&](const Element& qualifier) { classes.addQualifier(qualifier); }, stop);
        } catch (const ServerError& error) {
            if (error.kind() != Kind::kCimError || error.getErrorCode() != CIM_ERR_NOT_SUPPORTED)
                throw;
        }
    }

    // Returns false for a server that refuses that.
    bool readAllClasses(ClassCollection& classes, const std::string& nameSpace,
                        const std::stop_token& stop) {
        try {
            perform(
                enumerateClasses(nameSpace, options_.localOnly),
                [&](const Element& found) { classes.addClass(found); }, stop);
            return true;
        } catch (const ServerError& error) {
            if (!refusesOperation(error))
                throw;
            return false;
        }
    }

    // Asks for the classes one by one, several at a time, and for superclasses that are not among
    // them.
    void readClassesByName(ClassCollection& classes, const std::string& nameSpace,
                           const std::vector<std::string>& patterns, const std::stop_token& stop) {
        std::deque<std::string> wanted = classNames(nameSpace, patterns, stop);
        Base::NameSet known;
        std::deque<std::string> asked;  // what the set refers to
        const auto next = [&]() -> std::optional<HttpClient::Call> {
            while (!wanted.empty()) {
                const std::string& className = asked.emplace_back(std::move(wanted.front()));
                wanted.pop_front();
                if (known.insert(className).second) {
                    return classCall(nameSpace, className, [&](const Element& found) {
                        classes.addClass(found);
                        const TSKString above = classes.superclassOf(className).value_or("");
                        if (isName(above))
                            wanted.emplace_back(above);
                    });
                }
            }
            return std::nullopt;
        };
        http_.perform(next, stop);
    }

    // GetClass; anything but the class of that name is no response to it. A class that is not there
    // any more is missing for its subclasses alone.
    [[nodiscard]] HttpClient::Call classCall(const std::string& nameSpace,
                                             const std::string& className,
                                             const OnResult& onClass) const {
        HttpClient::Call made =
            call(getClass(nameSpace, className, options_.localOnly),
                 [className, onClass](const Element& found) {
                     const std::string_view sent = found.attribute(Attribute::kName).value_or("");
                     if (found.tag() != Tag::kClass || !Base::equalsIgnoringCase(sent, className)) {
                         throw ServerError(Kind::kNotCimXml,
                                           "asked for the class " + Base::quoted(className) +
                                               ", the server sends " + shown(sent));
                     }
                     onClass(found);
                 });
        made.onEnd = [onEnd = std::move(made.onEnd)] {
            try {
                onEnd();
            } catch (const ServerError& error) {
                if (!isMissing(error))
                    throw;
            }
        };
        return made;
    }

    std::deque<std::string> classNames(const std::string& nameSpace,
                                       const std::vector<std::string>& patterns,
                                       const std::stop_token& stop) {
        const std::vector<Base::NamePattern> filters(patterns.begin(), patterns.end());
        std::deque<std::string> names;
        perform(
            enumerateClassNames(nameSpace),
            [&](const Element& found) {
                std::string className(found.attribute(Attribute::kName).value_or(""));
                if (found.tag() != Tag::kClassName || !isName(className)) {
                    throw ServerError(Kind::kNotCimXml,
                                      shown(className) + " is not the name of a class");
                }
                const bool isWanted =
                    filters.empty() ||
                    std::ranges::any_of(filters, [&](const Base::NamePattern& filter) {
                        return filter.fits(className.c_str());
                    });
                if (isWanted)
                    names.push_back(std::move(className));
            },
            stop);
        return names;
    }

    const ServerOptions options_;
    HttpClient http_;
};

void requireServerUrl(const std::string& url) {
    const ServerOptions options = {.url = url};
    (void)HttpClient(options);
}

CimServer::CimServer(ServerOptions options)
    : implementation_(std::make_unique<Implementation>(std::move(options))) {}

CimServer::~CimServer() = default;

const std::string& CimServer::name() const noexcept {
    return implementation_->name();
}

std::vector<std::string> CimServer::namespaces(const std::stop_token& stop) {
    return implementation_->namespaces(stop);
}

NamespaceContent CimServer::read(const std::string& nameSpace,
                                 const std::vector<std::string>& patterns,
                                 const std::stop_token& stop, std::optional<std::uint64_t> known) {
    return implementation_->read(nameSpace, patterns, stop, known);
}

}  // namespace CimXml
