// A host that loads the providers of the folders that it is given and tells whom requests go to.

#include <iostream>

#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Platform/Util/TSKLog.h"

namespace {

class Namespaces : public ITeskNamespaceList {
  public:
    [[nodiscard]] TSKValSlist<TSKString> getNamespaceList() const override {
        return {"root/cimv2"};
    }
};

bool succeeded(const TeskProviderPluginManager::Failures& failures) {
    for (const TeskProviderFailure& failure : failures)
        std::cerr << failure.file << ": " << failure.reason << '\n';
    return failures.empty();
}

}  // namespace

int main(int count, char** arguments) {
    TSKLog::setLevel(TeskTraceLog::SeverityError);
    const auto manager = TSKSmrPtr<TeskProviderPluginManager>::make();
    TeskProviderPluginManager::setTeskProviderPluginManager(manager);
    manager->setNamespaceList(TSKSmrPtr<Namespaces>::make());
    for (int index = 1; index < count; ++index) {
        if (!succeeded(manager->loadProviders(arguments[index])))
            return 1;
    }
    if (!succeeded(manager->startup()) || !succeeded(manager->postStartup()))
        return 1;
    for (const char* const path :
         {"/root/cimv2/CIM_Foo.wsdl", "/greeting", "/elsewhere/CIM_Foo.wsdl"}) {
        urma::pf::Provider* provider = manager->findProvider(path);
        std::cout << path << ": "
                  << (provider == nullptr ? TSKString("nobody") : provider->getProviderName())
                  << '\n';
    }
    return succeeded(manager->shutdown()) ? 0 : 1;
}
