#include <signal.h>

#include <fstream>

#include "odbc/server_store.h"

namespace vordane::odbc {

std::vector<int> signalServer(int signal) {
  std::ifstream file(serverFolder() / "data/postmaster.pid");
  int server = 0;
  file >> server;
  std::vector<int> reached;
  const auto send = [&](int process) {
    if (kill(process, signal) == 0) reached.push_back(process);
  };
  std::vector<int> others;
  if (signal == SIGSTOP) send(server);  // first, so that it makes no further ones
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::ifstream stat(entry.path() / "stat");
    std::string number, name, state;
    int parent = 0;
    if (stat >> number >> name >> state >> parent && parent == server) others.push_back(std::stoi(number));
  }
  if (signal != SIGSTOP) send(server);
  for (const int each : others) send(each);
  return reached;
}

}  // namespace vordane::odbc
