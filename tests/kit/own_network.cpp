// own_network COMMAND [ARGUMENT...]
//
// Becomes the command, in a network of its own that has only the loopback interface: the command
// has every port for itself, whatever else runs on the machine. The user stays the same; who isn't
// root gets a namespace of users for it, and may listen on port 1000 there.
//
// Ends with status 77 where the system refuses, as most containers do.
#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr int refused = 77;

bool writeTo(const char* path, const std::string& text)
{
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    close(file);
    return written;
}

// One user or group is itself inside.
std::string itself(unsigned id)
{
    const std::string number = std::to_string(id);
    return number + ' ' + number + " 1";
}

bool leaveNetwork()
{
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (user == 0) {
        return unshare(CLONE_NEWNET) == 0;
    }
    return unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 && writeTo("/proc/self/setgroups", "deny") &&
           writeTo("/proc/self/uid_map", itself(user)) &&
           writeTo("/proc/self/gid_map", itself(group));
}

bool startLoopback()
{
    ifreq request{};
    std::strcpy(request.ifr_name, "lo");
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    bool started = ioctl(socket, SIOCGIFFLAGS, &request) == 0;
    request.ifr_flags = static_cast<short>(request.ifr_flags | IFF_UP);
    started = started && ioctl(socket, SIOCSIFFLAGS, &request) == 0;
    close(socket);
    return started;
}

} // namespace

int main(int, char** arguments)
{
    if (!leaveNetwork() || !startLoopback()) {
        std::perror("a network of its own");
        return refused;
    }
    // Where it is refused, what needs port 1000 skips, as it does for such users elsewhere.
    writeTo("/proc/sys/net/ipv4/ip_unprivileged_port_start", "1000");
    execvp(arguments[1], arguments + 1);
    std::perror(arguments[1]);
    return refused;
}
