// oltctl update: against the simulated box, and against modules that behave otherwise.

#include "cli/update/update.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/olthost.h"
#include "tests/cli/program.h"
#include "tests/cli/terminal.h"
#include "tests/support/bytes.h"

namespace olt::test {

namespace {

using nlohmann::json;
using std::chrono::milliseconds;

constexpr uint32_t kReadProgress = 61;
constexpr uint32_t kComplete = 100;
constexpr uint32_t kFailed = 0x80000001;

std::string image_of(size_t size) {
  return characters(scattered(size));
}

std::vector<json> objects(const std::string &lines) {
  std::vector<json> all;
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line);) all.push_back(json::parse(line));
  return all;
}

/// Of the objects, the members that do not depend on the time.
std::vector<std::string> states(const std::string &lines) {
  std::vector<std::string> all;
  for (json &object : objects(lines)) {
    for (const char *name : {"bytes_per_second", "seconds_left", "milliseconds"})
      object.erase(name);
    all.push_back(object.dump());
  }
  return all;
}

std::string last_line(const std::string &text) {
  size_t end = text.rfind('\n', text.size() - 2);
  return text.substr(end == std::string::npos ? 0 : end + 1);
}

// With the simulated box.

class UpdateOfTheBox : public testing::Test {
 protected:
  std::string image(size_t size) const { return oltctl_.folder().write("image", image_of(size)); }

  Terminal at_terminal(const std::vector<std::string> &arguments) const {
    std::vector<std::string> command = {OLTCTL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return {command, private_environment(oltctl_.folder())};
  }

  /// The error line of an update that is refused before anything is sent.
  std::string refusal(const std::vector<std::string> &arguments) const {
    std::vector<std::string> command = {"update"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    Finished refused = oltctl_(command);
    EXPECT_EQ(refused.status, 2) << refused.errors;
    EXPECT_EQ(refused.output, "");
    EXPECT_EQ(oltctl_({"get_card_updatestatus"}).output, "value = idle\n");
    return refused.errors;
  }

  Oltctl oltctl_;
};

TEST_F(UpdateOfTheBox, OfTheOltEndsComplete) {
  Finished done = oltctl_({"update", "olt", image(655360)});
  EXPECT_EQ(done.status, 0) << done.errors;
  EXPECT_TRUE(done.output.starts_with("update olt: complete, 655360 bytes in ")) << done.output;
  EXPECT_TRUE(done.output.ends_with(" s\n")) << done.output;
  EXPECT_TRUE(done.errors.starts_with("update olt: 10 %, 64.0 KiB of 640.0 KiB, ")) << done.errors;
  EXPECT_TRUE(holds(done.errors, "\nupdate olt: 90 %, 576.0 KiB of 640.0 KiB, ")) << done.errors;
  EXPECT_TRUE(done.errors.ends_with("/s, 0s left\n")) << done.errors;
  EXPECT_EQ(std::count(done.errors.begin(), done.errors.end(), '\n'), 10);
  EXPECT_EQ(oltctl_({"get_card_updatestatus"}).output, "value = complete\n");
}

TEST_F(UpdateOfTheBox, OfOnusEndsComplete) {
  Finished done = oltctl_({"update", "onu", image(1)});
  EXPECT_EQ(done.status, 0) << done.errors;
  EXPECT_TRUE(done.output.starts_with("update onu: complete, 1 byte in ")) << done.output;
  EXPECT_EQ(oltctl_({"get_card_updatestatus"}).output, "value = idle\n");
}

TEST_F(UpdateOfTheBox, WritesLinesOfJson) {
  Finished done = oltctl_({"--json", "update", "olt", image(131073)});
  EXPECT_EQ(done.status, 0) << done.errors;
  EXPECT_EQ(done.errors, "");
  std::string begin = R"({"command":"update",)";
  EXPECT_EQ(
      states(done.output),
      (std::vector<std::string>{
          begin + R"("sent":65536,"state":"sending","target":"olt","total":131073,"version":1})",
          begin + R"("sent":131072,"state":"sending","target":"olt","total":131073,"version":1})",
          begin + R"("sent":131073,"state":"sending","target":"olt","total":131073,"version":1})",
          R"({"command":"update","error":null,"sent":131073,"state":"complete","target":"olt",)"
          R"("total":131073,"version":1})"}));
  json first = objects(done.output).front();
  EXPECT_GT(first["bytes_per_second"], 0);
  EXPECT_TRUE(first["seconds_left"].is_number_unsigned());
  EXPECT_TRUE(objects(done.output).back()["milliseconds"].is_number_unsigned());
}

TEST_F(UpdateOfTheBox, NeedsNoMemoryForTheWholeImage) {
  std::string file = image(1);
  std::filesystem::resize_file(file, 268435456);
  EXPECT_LT(peak_memory({OLTCTL, "update", "olt", file}, private_environment(oltctl_.folder())),
            65536);
}

TEST_F(UpdateOfTheBox, RefusesWhatIsNoImage) {
  std::string expected = "; expected a firmware image, a file of 1 to 268435456 bytes\n";
  std::string folder = oltctl_.folder().path();
  EXPECT_EQ(refusal({"olt", folder}), "update: " + folder + ": is not a regular file" + expected);
  std::string none = oltctl_.folder() / "none";
  EXPECT_EQ(refusal({"olt", none}), "update: " + none + ": No such file or directory" + expected);
  std::string empty = oltctl_.folder().write("empty", "");
  EXPECT_EQ(refusal({"onu", empty}), "update: " + empty + ": is empty" + expected);
  std::filesystem::resize_file(empty, 268435457);
  EXPECT_EQ(refusal({"olt", empty}), "update: " + empty + ": has 268435457 bytes" + expected);
  std::string pipe = oltctl_.folder() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(refusal({"olt", pipe}), "update: " + pipe + ": is not a regular file" + expected);
  std::string closed = image(10);
  ASSERT_EQ(chmod(closed.c_str(), 0), 0);
  if (access(closed.c_str(), R_OK) == 0) return;  // root may read everything
  EXPECT_EQ(refusal({"olt", closed}), "update: " + closed + ": Permission denied" + expected);
}

TEST_F(UpdateOfTheBox, RefusesOtherWords) {
  EXPECT_EQ(refusal({}), "update: '' given; expected olt or onu\n");
  EXPECT_EQ(refusal({"card", "image"}), "update: 'card' given; expected olt or onu\n");
  EXPECT_EQ(refusal({"olt"}), "update olt: no file is given; expected one\n");
  std::string file = image(10);
  EXPECT_EQ(refusal({"olt", file, "total=5"}),
            "update olt: 'total=5' given; expected nothing after the file\n");
  EXPECT_EQ(refusal({"onu", file, "--layout", "none"}),
            "update onu: the layout none does not say what a piece is; expected 'onu_update' in "
            "it, or the layout box\n");
}

TEST_F(UpdateOfTheBox, ThatTheBoxRefusesSaysHowTheBoxIsLeft) {
  ASSERT_EQ(oltctl_({"fault", "add", "type=11", "status=5", "from=2", "count=1"}).status, 0);
  Finished refused = oltctl_({"--json", "update", "olt", image(200000)});
  EXPECT_EQ(refused.status, 1);
  std::string line =
      "update olt: the piece at byte 65536 failed: result 5 (0x00000005): status 5 (oltbox: exists "
      "already); the box has confirmed 65536 of 200000 bytes; the next update starts from the "
      "beginning";
  EXPECT_EQ(refused.errors, line + '\n');
  EXPECT_EQ(states(refused.output).back(),
            R"({"command":"update","error":")" + line +
                R"(","sent":65536,"state":"failed","target":"olt","total":200000,"version":1})");
  Finished again = oltctl_({"update", "olt", image(200000)});
  EXPECT_EQ(again.status, 0) << again.errors;
}

TEST_F(UpdateOfTheBox, ThatCannotBeReachedAdvises) {
  std::string folder = oltctl_.folder().path();
  Finished refused = oltctl_({"--box", folder, "update", "onu", image(10)});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output, "");
  EXPECT_TRUE(refused.errors.starts_with(
      "update onu: the piece at byte 0 failed: result 131072 (0x00020000): "))
      << refused.errors;
  EXPECT_TRUE(refused.errors.ends_with(
      "; the box has confirmed 0 of 10 bytes; the next update starts from the beginning; expected "
      "a box that was started with 'oltbox --run-dir " +
      folder + "', or --box embedded\n"))
      << refused.errors;
}

TEST_F(UpdateOfTheBox, AsksAtATerminal) {
  std::string file = image(131072);
  std::string question =
      "update olt: 131072 bytes of " + file + " replace the firmware. Go on? [y/N] ";
  Terminal refused = at_terminal({"update", "olt", file});
  ASSERT_TRUE(refused.shows(question)) << refused.transcript();
  refused.type("\r");
  EXPECT_TRUE(refused.shows("update olt: not confirmed, nothing was sent; expected y, or --yes"));
  EXPECT_EQ(refused.end(), 1);
  EXPECT_EQ(oltctl_({"get_card_updatestatus"}).output, "value = idle\n");
  Terminal confirmed = at_terminal({"update", "olt", file});
  ASSERT_TRUE(confirmed.shows(question)) << confirmed.transcript();
  confirmed.type("y\r");
  EXPECT_TRUE(confirmed.shows("update olt: complete, 131072 bytes in "));
  EXPECT_EQ(confirmed.end(), 0);
}

TEST_F(UpdateOfTheBox, RedrawsOneLineOfATerminal) {
  ASSERT_EQ(oltctl_({"fault", "add", "type=64", "delay_ms=150"}).status, 0);
  Terminal terminal = at_terminal({"--yes", "update", "onu", image(262144)});
  EXPECT_TRUE(terminal.shows("\rupdate onu: 25 %, 64.0 KiB of 256.0 KiB, "));
  EXPECT_TRUE(terminal.shows(" KiB/s, "));
  EXPECT_TRUE(terminal.shows("s left"));
  EXPECT_TRUE(terminal.shows("\rupdate onu: 50 %, 128.0 KiB of 256.0 KiB, "));
  EXPECT_TRUE(terminal.shows("\rupdate onu: 75 %, 192.0 KiB of 256.0 KiB, "));
  EXPECT_TRUE(terminal.shows("\rupdate onu: 100 %, 256.0 KiB of 256.0 KiB, "));
  EXPECT_TRUE(terminal.shows(" KiB/s, 0s left"));
  EXPECT_TRUE(terminal.shows("\r\nupdate onu: complete, 262144 bytes in "));
  EXPECT_EQ(terminal.end(), 0);
  EXPECT_EQ(std::count(terminal.transcript().begin(), terminal.transcript().end(), '\n'), 2);
}

TEST_F(UpdateOfTheBox, CutsTheLineOfANarrowTerminal) {
  Terminal terminal({OLTCTL, "--yes", "update", "onu", image(262144)},
                    private_environment(oltctl_.folder()), {24, 20, 0, 0});
  EXPECT_TRUE(terminal.shows("\rupdate onu: 100 %, \r\nupdate onu: complete, 262144 bytes in "))
      << terminal.transcript();
  EXPECT_EQ(terminal.end(), 0);
}

/// Presses Ctrl-C during an update of ten pieces. @return how many of them the box has confirmed
uint32_t interrupt(Terminal &terminal) {
  EXPECT_TRUE(terminal.shows("update olt: 20 %")) << terminal.transcript();
  terminal.type("\x03");
  std::string before = "\r\nupdate olt: interrupted; the box has confirmed ";
  EXPECT_TRUE(terminal.shows(before)) << terminal.transcript();
  EXPECT_TRUE(terminal.shows(" of 655360 bytes; the next update starts from the beginning\r\n"))
      << terminal.transcript();
  std::string number = terminal.transcript().substr(terminal.transcript().find(before));
  unsigned long bytes = std::stoul(number.substr(before.size()));
  EXPECT_EQ(bytes % 65536, 0U);
  EXPECT_GE(bytes, 131072U);
  EXPECT_LT(bytes, 655360U);
  return static_cast<uint32_t>(bytes / 65536);
}

TEST_F(UpdateOfTheBox, EndsBetweenTwoPiecesOnCtrlC) {
  ASSERT_EQ(oltctl_({"fault", "add", "type=11", "delay_ms=200"}).status, 0);
  Terminal terminal = at_terminal({"--yes", "update", "olt", image(655360)});
  uint32_t pieces = interrupt(terminal);
  EXPECT_EQ(terminal.end(), 128 + SIGINT);
  // The embedded box was kept.
  EXPECT_EQ(oltctl_({"get_card_updatestatus"}).output,
            "value = " + std::to_string(pieces * 10) + " %\n");
}

TEST_F(UpdateOfTheBox, InTheShellCtrlCEndsTheUpdateAlone) {
  ASSERT_EQ(oltctl_({"fault", "add", "type=11", "delay_ms=200"}).status, 0);
  std::string file = image(655360);
  Terminal shell = at_terminal({"shell"});
  ASSERT_TRUE(shell.shows("oltctl embedded> ")) << shell.transcript();
  shell.type("update olt " + file + "\r");
  ASSERT_TRUE(shell.shows("Go on? [y/N] ")) << shell.transcript();
  shell.type("y\r");
  interrupt(shell);
  ASSERT_TRUE(shell.shows("oltctl embedded> ")) << shell.transcript();
  shell.type("exit\r");
  EXPECT_EQ(shell.end(), 0);
}

// With modules of others.

/// Module 2 with firmware of its own: its answers are what the test says.
class Module {
 public:
  using Answer = std::function<void(const olt_request &, olt_answer &)>;

  Module(const std::string &run_dir, Answer answer) : answer_(std::move(answer)) {
    char error[256];
    olt_server_options options{};
    options.run_dir = run_dir.c_str();
    server_.reset(olt_server_create(&options, error));
    if (server_ == nullptr || olt_server_add(server_.get(), 2, take, this, error) != 0) {
      throw std::runtime_error(error);
    }
    thread_ = std::thread([this] {
      char line[256];
      EXPECT_EQ(olt_server_run(server_.get(), line), 0) << line;
    });
  }
  Module(const Module &) = delete;
  Module &operator=(const Module &) = delete;
  ~Module() {
    olt_server_stop(server_.get());
    thread_.join();
  }

  std::vector<Bytes> pieces() {
    std::lock_guard lock(mutex_);
    return pieces_;
  }

 private:
  static void take(void *context, const olt_request *request, olt_answer *answer) {
    auto *module = static_cast<Module *>(context);
    const auto *data = static_cast<const uint8_t *>(request->data);
    if (request->message_type != kReadProgress) {
      std::lock_guard lock(module->mutex_);
      module->pieces_.emplace_back(data, data + request->length);
    }
    module->answer_(*request, *answer);
  }

  Answer answer_;
  std::mutex mutex_;
  std::vector<Bytes> pieces_;
  std::unique_ptr<olt_server, decltype(&olt_server_destroy)> server_{nullptr, &olt_server_destroy};
  std::thread thread_;
};

class UpdateOfAModule : public testing::Test {
 protected:
  Finished oltctl(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--box", run_dir_});
    return oltctl_(arguments);
  }

  std::string image(size_t size) const { return oltctl_.folder().write("image", image_of(size)); }

  /// Answers with bytes that live until the next answer.
  void reply(olt_answer &answer, Bytes bytes) {
    reply_ = std::move(bytes);
    answer.reply = reply_.data();
    answer.reply_length = static_cast<uint32_t>(reply_.size());
  }

  Oltctl oltctl_;
  std::string run_dir_ = oltctl_.folder() / "run";
  Bytes reply_;
};

TEST_F(UpdateOfAModule, SendsHeadsWithLengthAndPosition) {
  Module module(run_dir_, [this](const olt_request &request, olt_answer &answer) {
    reply(answer, request.message_type == kReadProgress ? word(kComplete) : Bytes{});
  });
  Finished done = oltctl({"update", "olt", image(65536 + 3)});
  EXPECT_EQ(done.status, 0) << done.errors;
  ASSERT_EQ(module.pieces().size(), 2U);
  Bytes content = scattered(65536 + 3);
  Bytes first = hex("03000100 00000000");
  first.insert(first.end(), content.begin(), content.begin() + 65536);
  EXPECT_EQ(module.pieces()[0], first);
  Bytes second = hex("03000100 00000100");
  second.insert(second.end(), content.begin() + 65536, content.end());
  EXPECT_EQ(module.pieces()[1], second);
}

TEST_F(UpdateOfAModule, FollowsTheProgressToItsEnd) {
  std::vector<uint32_t> progress = {5, 5, 80, kComplete};
  size_t reads = 0;
  Module module(run_dir_, [&](const olt_request &request, olt_answer &answer) {
    if (request.message_type == kReadProgress) reply(answer, word(progress.at(reads++)));
  });
  Finished done = oltctl({"update", "olt", image(10)});
  EXPECT_EQ(done.status, 0) << done.errors;
  EXPECT_TRUE(done.output.starts_with("update olt: complete, 10 bytes in ")) << done.output;
  EXPECT_TRUE(
      done.errors.ends_with("\nupdate olt: the image is sent, the box is at 5 %\n"
                            "update olt: the image is sent, the box is at 80 %\n"))
      << done.errors;
  reads = 0;
  done = oltctl({"--json", "update", "olt", image(10)});
  std::vector<std::string> lines = states(done.output);
  ASSERT_EQ(lines.size(), 4U) << done.output;
  EXPECT_EQ(lines[1],
            R"({"command":"update","progress":5,"sent":10,"state":"writing","target":"olt",)"
            R"("total":10,"version":1})");
}

TEST_F(UpdateOfAModule, FailsWhenTheProgressDoes) {
  Module module(run_dir_, [this](const olt_request &request, olt_answer &answer) {
    if (request.message_type == kReadProgress) reply(answer, word(kFailed));
  });
  Finished failed = oltctl({"update", "olt", image(10)});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(failed.output, "");
  EXPECT_EQ(last_line(failed.errors),
            "update olt: the box reports that the update has failed; the box has confirmed the "
            "whole image; get_card_updatestatus says how the update goes on\n");
}

TEST_F(UpdateOfAModule, FailsWhenAnAnswerSaysSo) {
  Module module(run_dir_, [this](const olt_request &request, olt_answer &answer) {
    reply(answer,
          record(8, {{4, word(word_at({static_cast<const uint8_t *>(request.data), 8}, 4) == 0
                                  ? 33
                                  : kFailed)}}));
  });
  Finished failed = oltctl({"update", "onu", image(200000)});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(last_line(failed.errors),
            "update onu: the box reports that the update has failed; the box has confirmed 131072 "
            "of 200000 bytes; the next update starts from the beginning\n");
  EXPECT_EQ(module.pieces().size(), 2U);
}

TEST_F(UpdateOfAModule, OfOnusIsCompleteOnlyIfTheLastAnswerSaysSo) {
  Bytes answered = record(8, {{4, word(99)}});
  Module module(run_dir_, [&](const olt_request & /*request*/, olt_answer &answer) {
    reply(answer, answered);
  });
  for (size_t length : {size_t{8}, size_t{7}, size_t{0}}) {
    answered.resize(length);
    Finished failed = oltctl({"update", "onu", image(10)});
    EXPECT_EQ(failed.status, 1);
    EXPECT_EQ(last_line(failed.errors),
              "update onu: the answer to the last piece does not say that the update is complete; "
              "the box has confirmed the whole image\n");
  }
}

TEST_F(UpdateOfAModule, ThatGoesAwayInTheMiddleSaysHowFarItCame) {
  Module module(run_dir_, [&](const olt_request &request, olt_answer &answer) {
    bool is_first = word_at({static_cast<const uint8_t *>(request.data), 8}, 4) == 0;
    answer.action = is_first ? OLT_ANSWER_SEND : OLT_ANSWER_DISCONNECT;
  });
  Finished failed = oltctl({"update", "olt", image(200000)});
  EXPECT_EQ(failed.status, 1);
  std::string line = last_line(failed.errors);
  EXPECT_TRUE(
      line.starts_with("update olt: the piece at byte 65536 failed: result 196608 (0x00030000): "))
      << line;
  EXPECT_TRUE(
      line.ends_with("; the box has confirmed 65536 of 200000 bytes; the next update "
                     "starts from the beginning\n"))
      << line;
}

TEST_F(UpdateOfAModule, ThatGoesAwayAtTheEndIsAFailure) {
  Module module(run_dir_, [&](const olt_request &request, olt_answer &answer) {
    if (request.message_type == kReadProgress) answer.action = OLT_ANSWER_DISCONNECT;
  });
  Finished failed = oltctl({"update", "olt", image(10)});
  EXPECT_EQ(failed.status, 1);
  EXPECT_TRUE(last_line(failed.errors)
                  .starts_with("update olt: get_card_updatestatus failed: result 196608 "))
      << failed.errors;
}

TEST_F(UpdateOfAModule, EndsWhenTheFileChanges) {
  std::string file = image(200000);
  Module module(run_dir_, [&](const olt_request & /*request*/, olt_answer & /*answer*/) {
    std::filesystem::resize_file(file, 100000);
  });
  Finished failed = oltctl({"update", "olt", file});
  EXPECT_EQ(failed.status, 1);
  EXPECT_EQ(last_line(failed.errors),
            "update olt: " + file +
                " was changed; the box has confirmed 65536 of 200000 bytes; "
                "the next update starts from the beginning\n");
  EXPECT_EQ(module.pieces().size(), 1U);
}

TEST_F(UpdateOfAModule, ASignalWhileItWritesSaysWhatGoesOn) {
  Module module(run_dir_, [&](const olt_request &request, olt_answer &answer) {
    if (request.message_type == kReadProgress) reply(answer, word(50));
  });
  Terminal terminal({OLTCTL, "--box", run_dir_, "--yes", "update", "olt", image(10)},
                    private_environment(oltctl_.folder()));
  ASSERT_TRUE(terminal.shows("\rupdate olt: the image is sent, the box is at 50 %"));
  kill(terminal.pid(), SIGTERM);
  EXPECT_TRUE(
      terminal.shows("update olt: interrupted; the box has confirmed the whole image; "
                     "get_card_updatestatus says how the update goes on\r\n"));
  EXPECT_EQ(terminal.end(), 128 + SIGTERM);
}

TEST_F(UpdateOfAModule, ASecondSignalEndsAtOnce) {
  Module module(run_dir_, [&](const olt_request & /*request*/, olt_answer &answer) {
    answer.action = OLT_ANSWER_WITHHOLD;
  });
  Terminal terminal({OLTCTL, "--trace", "--box", run_dir_, "--yes", "update", "olt", image(10)},
                    private_environment(oltctl_.folder()));
  while (module.pieces().empty()) std::this_thread::sleep_for(milliseconds(1));
  kill(terminal.pid(), SIGINT);
  std::this_thread::sleep_for(milliseconds(100));
  kill(terminal.pid(), SIGINT);
  EXPECT_EQ(terminal.end(), 128 + SIGINT);
  EXPECT_FALSE(holds(terminal.transcript(), "interrupted")) << terminal.transcript();
}

/// Shows nothing.
class NoDisplay : public olt::cli::UpdateDisplay {
 public:
  void sent(uint32_t /*bytes*/) override {}
  void writing(const olt::cli::NamedValue & /*progress*/) override {}
  void complete() override {}
  void failed(const olt::cli::Error & /*error*/, uint32_t /*sent*/) override {}
};

TEST_F(UpdateOfAModule, GivesUpWithoutProgress) {
  Module module(run_dir_, [&](const olt_request &request, olt_answer &answer) {
    if (request.message_type == kReadProgress) reply(answer, word(7));
  });
  olt::cli::Access box({.run_dir = run_dir_});
  box.open();
  olt::cli::Update update(olt::cli::update_targets()[0], olt::catalog::Layout::box(), image(10),
                          {});
  NoDisplay display;
  try {
    update.run(box, display, milliseconds(1000));
    FAIL() << "complete";
  } catch (const olt::cli::Error &error) {
    EXPECT_STREQ(error.what(),
                 "update olt: no progress for 1s, the update stays at 7 %; the box has confirmed "
                 "the whole image; get_card_updatestatus says how the update goes on");
  }
}

TEST_F(UpdateOfAModule, SendsThePiecesOfItsLayout) {
  std::string layout = oltctl_.folder().write("acme.json", R"({
    "version": 1, "name": "acme",
    "records": {"onu_update_piece": [
      {"name": "magic", "offset": 0, "width": 2, "kind": "number"},
      {"name": "length", "offset": 4, "width": 4, "kind": "number"},
      {"name": "onu", "offset": 8, "kind": "ont"},
      {"name": "position", "offset": 20, "width": 4, "kind": "number"},
      {"name": "image", "offset": 26, "kind": "bytes"}]},
    "onu_update": {"head_size": 26, "length_offset": 4, "position_offset": 20, "piece_size": 3,
                   "max_size": 8, "progress_offset": 1, "complete": 9, "failed": 10}})");
  Module module(run_dir_, [&](const olt_request & /*request*/, olt_answer &answer) {
    reply(answer, hex("ff 09000000"));
  });
  std::string file = oltctl_.folder().write("image", "ABCDE");
  Finished done = oltctl({"--layout", layout, "update", "onu", file, "onu=1/2/3", "magic=0x55aa"});
  EXPECT_EQ(done.status, 0) << done.errors;
  ASSERT_EQ(module.pieces().size(), 2U);
  EXPECT_EQ(module.pieces()[0],
            hex("aa55 0000 05000000 01000000 02000000 03000000 00000000 0000 414243"));
  EXPECT_EQ(module.pieces()[1],
            hex("aa55 0000 05000000 01000000 02000000 03000000 03000000 0000 4445"));
  EXPECT_EQ(oltctl({"--layout", layout, "update", "onu", file, "length=4"}).errors,
            "update onu: 'length=4' given; expected magic=VALUE, onu=VALUE after the file\n");
  EXPECT_EQ(oltctl({"--layout", layout, "update", "onu", file, "magic=70000"}).errors,
            "update onu: magic: '70000' is too large; expected a number from 0 to 65535\n");
  write_file(file, "ABCDEFGHI");
  EXPECT_EQ(oltctl({"--layout", layout, "update", "onu", file}).errors,
            "update: " + file +
                ": has 9 bytes; expected a firmware image, a file of 1 to 8 "
                "bytes\n");
  EXPECT_EQ(oltctl({"--layout", layout, "update", "olt", file}).errors,
            "update olt: the layout acme does not say what a piece is; expected 'olt_update' in "
            "it, or the layout box\n");
}

}  // namespace

}  // namespace olt::test
