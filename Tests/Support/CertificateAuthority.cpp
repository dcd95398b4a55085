#include "Tests/Support/CertificateAuthority.h"

#include <stdexcept>

#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/ProgramRun.h"

namespace {

// Smaller than those of RSA, and made in no time.
constexpr const char* kNewKey = " -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes";

// What `openssl ca` wants to know, which is the only one of its commands that issues certificates
// of the past.
constexpr const char* kConfiguration =
    "[ca]\n"
    "default_ca = authority\n"
    "[authority]\n"
    "certificate = authority.pem\n"
    "private_key = authority.key\n"
    "database = issued\n"
    "new_certs_dir = .\n"
    "rand_serial = yes\n"
    "unique_subject = no\n"
    "default_md = sha256\n"
    "default_days = 2\n"
    "copy_extensions = copy\n"
    "policy = policy\n"
    "[policy]\n"
    "commonName = supplied\n";

}  // namespace

CertificateAuthority::CertificateAuthority() {
    directory_.write("openssl.conf", kConfiguration);
    directory_.write("issued", "");
    run(std::string("req -x509 -days 2 -subj '/CN=Authority of a test' -keyout authority.key"
                    " -out authority.pem") +
        kNewKey);
}

CertificateAuthority::Certificate CertificateAuthority::issue(const std::string& host,
                                                              Validity validity) {
    const std::string name = std::to_string(++issued_);
    run("req -subj /CN=" + host + " -addext subjectAltName=DNS:" + host + " -keyout " + name +
        ".key -out " + name + ".request" + kNewKey);
    run("ca -batch -notext -config openssl.conf -in " + name + ".request -out " + name + ".pem" +
        (validity == Validity::kNow ? "" : " -startdate 20200101000000Z -enddate 20200102000000Z"));
    Certificate made;
    made.certificate = directory_ / (name + ".pem");
    made.key = directory_ / (name + ".key");
    made.both =
        directory_.write(name + ".both", contentOfFile(made.certificate) + contentOfFile(made.key));
    return made;
}

void CertificateAuthority::run(const std::string& arguments) const {
    const ProgramRun run =
        runProgram("cd " + directory_.path().string() + " && openssl " + arguments);
    if (run.end != "status 0")
        throw std::runtime_error("openssl " + arguments + ": " + run.errors);
}
