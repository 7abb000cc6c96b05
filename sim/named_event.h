// The classic platform branch's control signal: a POSIX named semaphore
// "/" + event name that consoles post and the server takes.
#pragma once

#include <semaphore.h>

#include <optional>
#include <string>
#include <string_view>

namespace px::sim {

class NamedEvent {
 public:
  // Creates (or opens) the semaphore "/" + name, open to every account.
  // nullopt, with the system's reason in error, when it cannot.
  static std::optional<NamedEvent> create(std::string_view name, std::string& error);

  NamedEvent(NamedEvent&& other) noexcept;
  NamedEvent& operator=(NamedEvent&& other) noexcept;
  NamedEvent(const NamedEvent&) = delete;
  ~NamedEvent();  // closes and removes the semaphore

  // Takes every post waiting; true when there was at least one.
  bool take_all();

 private:
  NamedEvent(sem_t* semaphore, std::string name);
  void release();

  sem_t* semaphore_;
  std::string name_;
};

}  // namespace px::sim
