// isolate PROGRAM [ARGUMENT...]: runs a test program in namespaces of its own, so that tests run side by
// side.
//
// The program sees a network of its own (all ports free, loopback up), a /dev of its own without any adapter
// but with pseudo-terminals, and a /run/lock of its own. Nothing of it is left behind. Where the machine does
// not permit namespaces the program runs all the same; VARUNDO_TEST_ISOLATION is then empty, else "net,dev",
// and a test that needs what is missing skips itself and says so.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool writeFile(const char* name, const std::string& text)
{
    const int file = open(name, O_WRONLY | O_CLOEXEC);
    const bool written =
        file >= 0 && write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    if (file >= 0) {
        close(file);
    }
    return written;
}

/// Root goes into the namespaces directly; anybody else becomes root of a user namespace of their own first.
bool enterNamespaces()
{
    if (unshare(CLONE_NEWNET | CLONE_NEWNS) == 0) {
        return true;
    }
    const std::string uid = std::to_string(getuid());
    const std::string gid = std::to_string(getgid());
    return unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS) == 0 &&
           writeFile("/proc/self/setgroups", "deny") && writeFile("/proc/self/uid_map", "0 " + uid + " 1") &&
           writeFile("/proc/self/gid_map", "0 " + gid + " 1");
}

bool bringLoopbackUp()
{
    const int handle = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    const bool up = handle >= 0 && ioctl(handle, SIOCGIFFLAGS, &request) == 0 &&
                    (request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP), true) &&
                    ioctl(handle, SIOCSIFFLAGS, &request) == 0;
    if (handle >= 0) {
        close(handle);
    }
    return up;
}

bool bindNode(const std::string& root, const char* name)
{
    const std::string node = root + "/" + name;
    const int file = open(node.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0666);
    if (file >= 0) {
        close(file);
    }
    return file >= 0 && mount((std::string("/dev/") + name).c_str(), node.c_str(), "", MS_BIND, nullptr) == 0;
}

/// A /dev of our own is built beside the old one, which it needs nodes of, and then moved over it.
bool makeDevices()
{
    if (mount("none", "/", "", MS_REC | MS_PRIVATE, nullptr) != 0) {
        return false;
    }
    char scratch[] = "/tmp/varundo-dev-XXXXXX";
    if (!mkdtemp(scratch)) {
        return false;
    }
    const std::string dev = scratch;
    bool made = mount("tmpfs", scratch, "tmpfs", MS_NOSUID, "mode=0755") == 0;
    for (const char* const name : {"null", "zero", "full", "random", "urandom", "tty"}) {
        made = made && bindNode(dev, name);
    }
    made = made && mkdir((dev + "/pts").c_str(), 0755) == 0 && mkdir((dev + "/shm").c_str(), 01777) == 0 &&
           mount("devpts", (dev + "/pts").c_str(), "devpts", MS_NOSUID,
                 "newinstance,ptmxmode=0666,mode=0620") == 0 &&
           symlink("pts/ptmx", (dev + "/ptmx").c_str()) == 0 &&
           symlink("/proc/self/fd", (dev + "/fd").c_str()) == 0 &&
           mount(scratch, "/dev", "", MS_MOVE, nullptr) == 0;
    rmdir(scratch);
    // Lock files of serial ports; the directory may be a link.
    char locks[4096];
    if (made && realpath("/run/lock", locks)) {
        made = mount("tmpfs", locks, "tmpfs", MS_NOSUID, "mode=1777") == 0;
    }
    return made;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: isolate PROGRAM [ARGUMENT...]\n");
        return 2;
    }
    std::string isolation;
    if (enterNamespaces()) {
        isolation = bringLoopbackUp() ? "net" : "";
        isolation += makeDevices() ? ",dev" : "";
    } else {
        std::fprintf(stderr, "isolate: no namespaces here (%s)\n", std::strerror(errno));
    }
    if (std::getenv("VARUNDO_TEST_REQUIRE_ISOLATION") != nullptr && isolation != "net,dev") {
        std::fprintf(stderr, "isolate: this machine permits only '%s', and all of it is required\n",
                     isolation.c_str());
        return 1;
    }
    setenv("VARUNDO_TEST_ISOLATION", isolation.c_str(), 1);
    execvp(argv[1], argv + 1);
    std::fprintf(stderr, "isolate: cannot run %s: %s\n", argv[1], std::strerror(errno));
    return 127;
}
