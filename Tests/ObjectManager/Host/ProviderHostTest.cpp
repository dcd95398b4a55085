#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/URMAConfigManager.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/MofModel.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kPlugin = "libWsdlWebProvider.so";

class ProviderHostTest : public testing::Test {
  protected:
    ProviderHostTest() { std::filesystem::create_directory(installation_ / "providers"); }

    void install(const std::string& file, const std::string& name) const {
        (void)installation_.copy(file, "providers/" + name);
    }
    void installFixture(const std::string& name) const {
        install(FIXTURES_DIRECTORY "/lib" + name + ".so", "lib" + name + ".so");
    }

    // Why a host cannot be made; the installation is called HERE there.
    [[nodiscard]] std::string failure() const {
        try {
            const Host::ProviderHost host(model_.repository(),
                                          TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                          installation_.path());
        } catch (const TeskBaseException& error) {
            std::string message = error.getMessage().data();
            const std::string directory = installation_.path();
            for (auto at = message.find(directory); at != std::string::npos;
                 at = message.find(directory))
                message.replace(at, directory.size(), "HERE");
            return message;
        }
        return "none";
    }

    static void expectNothingInstalled() {
        EXPECT_FALSE(TeskProviderPluginManager::getTeskProviderPluginManager());
        EXPECT_FALSE(AuthenticationHelper::setAuthenticator(nullptr));
        EXPECT_FALSE(URMAConfigManager::setInstallation(nullptr));
    }

    // How often the plug-in was called so.
    [[nodiscard]] long calls(const char* message) const {
        const Lines lines = log_.lines();
        return std::count(lines.begin(), lines.end(),
                          std::string("WsdlWebProvider|3|2|") + message);
    }

    LogRecording log_;
    const MofModel model_{"class TST_A { string Name; };"};
    const TemporaryDirectory installation_;
};

TEST_F(ProviderHostTest, ServesTheClassesWhileItLives) {
    install(PLUGIN_FILE, kPlugin);
    {
        const Host::ProviderHost host(
            model_.repository(), TSKSmrPtr<Host::LocalAuthenticator>::make(), installation_.path());
        EXPECT_EQ(TeskProviderPluginManager::getTeskProviderPluginManager().get(), &host.manager());
        TSKString path = "providers";
        URMAConfigManager::cvtToAbsolutePath(path);
        EXPECT_EQ(path, TSKString((installation_ / "providers").c_str()));
        const Host::MemoryClient client(host.manager(), {.host = "localhost"});
        EXPECT_EQ(client.get("/root/test/TST_A.xsd").status(), "200");
        EXPECT_EQ(client.get("/root/test/TST_B.xsd").status(), "404");
        EXPECT_EQ(calls("Shutdown called"), 0);
    }
    EXPECT_EQ(calls("Startup called"), 1);
    EXPECT_EQ(calls("Post Startup called"), 1);
    EXPECT_EQ(calls("Shutdown called"), 1);
    expectNothingInstalled();
}

TEST_F(ProviderHostTest, IsMadeAgainAfterwards) {
    install(PLUGIN_FILE, kPlugin);
    EXPECT_EQ(failure(), "none");
    EXPECT_EQ(failure(), "none");
    EXPECT_EQ(calls("Shutdown called"), 2);
    expectNothingInstalled();
}

TEST_F(ProviderHostTest, LaterRequestsSeeAnotherRepository) {
    install(PLUGIN_FILE, kPlugin);
    Host::ProviderHost host(model_.repository(), TSKSmrPtr<Host::LocalAuthenticator>::make(),
                            installation_.path());
    const Host::MemoryClient client(host.manager(), {.host = "localhost"});
    const TemporaryDirectory directory;
    const std::string mof = directory.write("b.mof", "class TST_B { string Name; };");
    const Loading::LoadedRepository other = Loading::loadRepository(
        {{.name = "root/test", .paths = {mof}}, {.name = "root/new", .paths = {mof}}}, {}, {});
    host.setRepository(other.repository);
    EXPECT_EQ(client.get("/root/test/TST_A.xsd").status(), "404");
    EXPECT_EQ(client.get("/root/test/TST_B.xsd").status(), "200");
    EXPECT_EQ(client.get("/root/new/TST_B.xsd").status(), "200");
}

// Notes its life and wants the requests for "/root/test", as the plug-in does.
class OwnProvider : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "own"; }
    void startup() override { life += "startup "; }
    void postStartup() override {
        life += "postStartup ";
        isRegistered = TeskProviderPluginManager::getTeskProviderPluginManager()->registerURI(
            getProviderName(), "/root/test");
    }
    void shutdown() override { life += "shutdown"; }

    std::string life;
    bool isRegistered = false;
};

TEST_F(ProviderHostTest, OwnProvidersComeBeforeTheLibraries) {
    install(PLUGIN_FILE, kPlugin);
    OwnProvider provider;
    {
        const Host::ProviderHost host(model_.repository(),
                                      TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                      installation_.path(), {&provider});
        EXPECT_EQ(host.manager().findProvider("/root/test/TST_A.xsd"), &provider);
    }
    EXPECT_TRUE(provider.isRegistered);
    EXPECT_EQ(provider.life, "startup postStartup shutdown");
    expectNothingInstalled();
}

TEST_F(ProviderHostTest, NeedsTheDirectoryOfProviders) {
    std::filesystem::remove(installation_ / "providers");
    EXPECT_EQ(failure(), "HERE/providers: Reading the directory failed: No such file or directory");
    expectNothingInstalled();
}

// It would serve nothing.
TEST_F(ProviderHostTest, NeedsAProvider) {
    installation_.write("providers/STSService.wsdl", "<a/>");
    EXPECT_EQ(failure(), "HERE/providers: holds no provider");
    expectNothingInstalled();
}

TEST_F(ProviderHostTest, RefusesALibraryThatIsNone) {
    install(PLUGIN_FILE, kPlugin);
    installation_.write("providers/libText.so", "text");
    EXPECT_EQ(failure(),
              "HERE/providers/libText.so: Loading failed: ProviderLibrary::load: "
              "HERE/providers/libText.so: file too short (1)");
    EXPECT_EQ(calls("Startup called"), 0);
    expectNothingInstalled();
}

// The other providers are shut down again.
TEST_F(ProviderHostTest, RefusesAProviderThatDoesNotStart) {
    install(PLUGIN_FILE, kPlugin);
    installFixture("ThrowingStartup");
    EXPECT_EQ(failure(),
              "HERE/providers/libThrowingStartup.so: Start-up failed: ThrowingStartup: "
              "The hardware does not answer (1)");
    EXPECT_EQ(calls("Startup called"), 1);
    EXPECT_EQ(calls("Post Startup called"), 0);
    EXPECT_EQ(calls("Shutdown called"), 1);
    expectNothingInstalled();
}

TEST_F(ProviderHostTest, RefusesAProviderThatDoesNotCompleteItsStart) {
    install(PLUGIN_FILE, kPlugin);
    installFixture("ThrowingPostStartup");
    EXPECT_EQ(failure(),
              "HERE/providers/libThrowingPostStartup.so: Post-start-up failed: "
              "ThrowingPostStartup: The hardware does not answer (1)");
    EXPECT_EQ(calls("Post Startup called"), 1);
    EXPECT_EQ(calls("Shutdown called"), 1);
    expectNothingInstalled();
}

}  // namespace
