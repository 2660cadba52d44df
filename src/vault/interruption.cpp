#include "vault/interruption.h"

#include <csignal>

namespace tavi::vault {
namespace {

volatile std::sig_atomic_t requested = 0;

void handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
  sigaction(signal, &action, nullptr);
}

void request(int) {
  requested = 1;
}

}  // namespace

Interruption::Interruption() {
  requested = 0;
  handle(SIGINT, request);
  handle(SIGTERM, request);
}

Interruption::~Interruption() {
  handle(SIGINT, SIG_DFL);
  handle(SIGTERM, SIG_DFL);
}

bool Interruption::isRequested() {
  return requested != 0;
}

}  // namespace tavi::vault
