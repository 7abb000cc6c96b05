#include "sim/named_event.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace px::sim {

NamedEvent::NamedEvent(sem_t* semaphore, std::string name)
    : semaphore_(semaphore), name_(std::move(name)) {}

NamedEvent::NamedEvent(NamedEvent&& other) noexcept
    : semaphore_(std::exchange(other.semaphore_, SEM_FAILED)), name_(std::move(other.name_)) {}

NamedEvent& NamedEvent::operator=(NamedEvent&& other) noexcept {
  if (this != &other) {
    release();
    semaphore_ = std::exchange(other.semaphore_, SEM_FAILED);
    name_ = std::move(other.name_);
  }
  return *this;
}

NamedEvent::~NamedEvent() { release(); }

void NamedEvent::release() {
  if (semaphore_ == SEM_FAILED) return;
  sem_close(semaphore_);
  sem_unlink(name_.c_str());
  semaphore_ = SEM_FAILED;
}

std::optional<NamedEvent> NamedEvent::create(std::string_view name, std::string& error) {
  std::string full = "/" + std::string(name);
  mode_t old_mask = umask(0);  // the mode below is meant as given
  sem_t* semaphore = sem_open(full.c_str(), O_CREAT, 0666, 0);
  int reason = errno;
  umask(old_mask);
  if (semaphore == SEM_FAILED) {
    error = std::strerror(reason);
    return std::nullopt;
  }
  return NamedEvent(semaphore, std::move(full));
}

bool NamedEvent::take_all() {
  bool taken = false;
  while (sem_trywait(semaphore_) == 0) taken = true;
  return taken;
}

}  // namespace px::sim
