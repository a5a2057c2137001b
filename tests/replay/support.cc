#include "tests/replay/support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <ostream>

#include "oltplatform.h"

namespace olt::test {

void PrintTo(const Answer &answer, std::ostream *stream) {
  *stream << "result " << answer.result << ", status " << answer.status << ", "
          << testing::PrintToString(answer.reply);
}

Answer reply(Bytes bytes) {
  return {.result = 0, .status = 0, .reply = std::move(bytes)};
}

Answer status(uint32_t status) {
  return {.result = 0, .status = status, .reply = {}};
}

Answer failure(int32_t result) {
  return {.result = result, .status = 0, .reply = {}};
}

Answer ask(uint32_t type, Bytes request, uint32_t module, uint32_t timeout, bool no_reply) {
  void *data = nullptr;
  uint16_t length = 0;
  uint32_t handle = 0;
  uint16_t status = 0;
  Answer answer;
  answer.result =
      platmsg_syn_result(type, module, request.data(), static_cast<uint32_t>(request.size()), &data,
                         &length, &handle, &status, no_reply ? 1 : 0, timeout);
  answer.status = status;
  if (handle == 0) return answer;
  const auto *bytes = static_cast<const uint8_t *>(data);
  answer.reply.assign(bytes, bytes + length);
  IPC_Free(handle);
  return answer;
}

pid_t start_child(const std::function<bool()> &body) {
  pid_t child = fork();
  if (child == 0) _exit(body() ? 0 : 1);
  return child;
}

bool in_child(const std::function<bool()> &body) {
  return wait_for(start_child(body)) == 0;
}

void ReplayTest::serve(const std::vector<RecordedExchange> &exchanges,
                       const std::vector<std::string> &options) {
  serve_file(capture_of(exchanges), options);
}

void ReplayTest::serve_file(const std::string &content, const std::vector<std::string> &options) {
  std::string path = box_.folder() + "/capture";
  write_file(path, content);
  std::vector<std::string> all = options;
  all.push_back(path);
  box_.start_program(OLTREPLAY, all);
}

std::string ReplayTest::end() {
  EXPECT_EQ(box_.end(SIGTERM), 0);
  std::string output = box_.output();
  return output.substr(output.find('\n') + 1);
}

}  // namespace olt::test
