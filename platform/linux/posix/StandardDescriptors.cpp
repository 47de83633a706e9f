#include "platform/linux/posix/StandardDescriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace dormel::posix {

void holdStandardDescriptors() {
  int fd = -1;
  do {
    fd = ::open("/dev/null", O_RDWR);
  } while (fd >= 0 && fd <= STDERR_FILENO);
  if (fd > STDERR_FILENO) ::close(fd);
}

}  // namespace dormel::posix
