#include "agent/subagent.h"

// The headers of net-snmp need this order.
#include <net-snmp/net-snmp-config.h>
//
#include <net-snmp/net-snmp-includes.h>
//
#include <net-snmp/agent/net-snmp-agent-includes.h>
//
#include <fmt/format.h>
#include <net-snmp/agent/agent_callbacks.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <list>
#include <map>
#include <set>
#include <utility>

#include "agent/cell.h"
#include "agent/event_loop.h"
#include "agent/poller.h"
#include "agent/row_cache.h"
#include "agent/rows.h"
#include "agent/standard_objects.h"
#include "agent/value.h"
#include "agent/worker.h"
#include "base/descriptor.h"
#include "base/failure.h"
#include "catalog/catalog.h"

namespace olt::agent {

namespace {

constexpr const char *kName = "oltsnmp";
/// Below the second after which the master sends a request again.
constexpr timeval kDeadline{0, 700'000};
/// After the deadline, until a module counts as lost. One that is only slow has then answered.
constexpr timeval kGrace{2, 300'000};
constexpr int kSecondsBetweenPings = 1;
constexpr timeval kReconnectInterval{0, 100'000};
/// Of a registration in front of snmpd's own, which have 127.
constexpr int kPriorityOverHost = 100;
constexpr const char *kOldValue = "old value";

std::vector<oid> to_net_snmp(const Oid &name) {
  return {name.begin(), name.end()};
}

u_char asn_type(SmiType type) {
  switch (type) {
    case SmiType::kInteger32:
    case SmiType::kEnumeration:
      return ASN_INTEGER;
    case SmiType::kUnsigned32:
      return ASN_UNSIGNED;
    case SmiType::kIpAddress:
      return ASN_IPADDRESS;
    default:
      return ASN_OCTET_STR;
  }
}

void set_value(netsnmp_variable_list *variable, const Column &column, const Value &value) {
  u_char type = asn_type(column.type);
  if (is_number(column.type)) {
    snmp_set_var_typed_integer(variable, type, static_cast<long>(value.number));
  } else {
    snmp_set_var_typed_value(variable, type, value.octets.data(), value.octets.size());
  }
}

/// The value that a manager wants to set; its type must be the column's.
Value value_in(const netsnmp_variable_list &variable, const Column &column) {
  if (column.type == SmiType::kUnsigned32) {
    return {static_cast<uint32_t>(*variable.val.integer)};
  }
  if (is_number(column.type)) return {*variable.val.integer};
  return {0, {variable.val.string, variable.val.string + variable.val_len}};
}

bool is_read(int mode) {
  return mode == MODE_GET || mode == MODE_GETNEXT;
}

/// What a request gets whose module does not answer or refuses.
int failure_of(int mode) {
  if (mode == MODE_SET_ACTION) return SNMP_ERR_COMMITFAILED;
  if (mode == MODE_SET_UNDO) return SNMP_ERR_UNDOFAILED;
  return SNMP_ERR_GENERR;
}

std::string name_of_module(uint8_t number) {
  for (const catalog::Module &module : catalog::modules()) {
    if (module.number == number) return fmt::format("{} ({})", module.name, number);
  }
  return fmt::to_string(number);
}

void log_line(int level, const std::string &text) {
  snmp_log(level, "%s: %s\n", kName, text.c_str());
}

std::vector<Table> all_tables(const catalog::Layout &layout) {
  std::vector<Table> tables = enterprise_tables(layout);
  for (Table &table : standard_tables(layout)) tables.push_back(std::move(table));
  return tables;
}

}  // namespace

class Subagent::Session {
 public:
  Session(SubagentOptions options, const catalog::Layout &layout)
      : options_(std::move(options)),
        tables_(all_tables(layout)),
        reader_(layout),
        poller_(tables_, layout, options_.pace) {
    block_signals();
    open();
    for (const Table &table : tables_) add_module(table);
    for (const Table &table : tables_) register_table(table);
    register_metrics();
    init_snmp(kName);  // connects, if the master is there
    // Later attempts fail without a word.
    netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_NO_CONNECTION_WARNINGS, 1);
    loop_.add(done_.descriptor(), [this] { finish(); });
    loop_.add(signals_.get(), [this] { take_signal(); });
    if (options_.pace.count() > 0) {
      auto pace = static_cast<long>(options_.pace.count());
      snmp_alarm_register_hr({pace / 1000, pace % 1000 * 1000}, SA_REPEAT, on_turn, this);
    }
  }

  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;

  int run(const std::function<bool()> &may_end) {
    while (true) {
      while (signal_ == 0) {
        loop_.round();
        count_reads();
      }
      if (signal_ != SIGHUP || may_end()) break;
      signal_ = 0;
    }
    disconnect();
    return signal_;
  }

  bool is_idle() const {
    return std::all_of(modules_.begin(), modules_.end(),
                       [](const auto &module) { return module.second.worker->is_idle(); });
  }

 private:
  /// What the agent counts of itself, in the order of agent_scalars().
  struct Metrics {
    u_long reads = 0;
    u_long requests = 0;
    u_long delegated = 0;
    u_long deadlines = 0;
    u_long refused = 0;
    u_long late = 0;
    u_long sessions_lost = 0;
  };

  struct Module {
    uint8_t number = 0;
    std::unique_ptr<Worker> worker;
    Session *session = nullptr;
    bool is_stuck = false;  ///< its worker is in a call that has passed its deadline
    unsigned alarm = 0;     ///< while it is: when the module counts as lost
    bool is_lost = false;
  };

  struct Registration {
    Session *session;
    const Table *table;
    Module *module;
    std::vector<oid> name;
    std::vector<oid> region;
  };

  /// A variable that waits for a task.
  struct Item {
    netsnmp_request_info *request;
    size_t column;
    bool is_passed_over;
  };

  struct Poll : Job {
    Module *module = nullptr;
    unsigned alarm = 0;
  };

  struct Request : Job {
    Registration *of = nullptr;
    std::vector<Item> items;  ///< one for each task
    int mode = 0;
    netsnmp_delegated_cache *delegated = nullptr;
    unsigned alarm = 0;
    unsigned sessions_lost = 0;  ///< when it was delegated
    bool is_answered = false;
  };

  void block_signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&signals, number);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    signals_ =
        above_standard_streams(Descriptor(signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC)));
    if (!signals_.is_open()) throw system_failure("oltsnmp: signalfd", errno);
  }

  void open() {
    setenv("MIBS", "", 1);  // names are for managers
    snmp_enable_stderrlog();
    netsnmp_enable_subagent();
    // Its settings are oltsnmp's own; no files of net-snmp are read or written.
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE, 1);
    netsnmp_ds_set_string(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_X_SOCKET,
                          options_.socket.c_str());
    // A longer one fills with the same table, and net-snmp compares it with each variable again.
    netsnmp_set_lookup_cache_size(1);
    if (init_agent(kName) != 0) throw Failure("oltsnmp: net-snmp does not start");
    netsnmp_ds_set_int(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_AGENTX_PING_INTERVAL,
                       kSecondsBetweenPings);  // init_agent sets another one
    snmp_register_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_INDEX_START, on_session, this);
    snmp_register_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_INDEX_STOP, on_session_lost,
                           this);
  }

  void add_module(const Table &table) {
    Module &module = modules_[table.reader->address.module];
    if (module.worker != nullptr) return;
    module.number = table.reader->address.module;
    module.session = this;
    module.worker = std::make_unique<Worker>(reader_, cache_, done_);
  }

  void register_table(const Table &table) {
    Module &module = modules_[table.reader->address.module];
    registrations_.push_back({this, &table, &module, to_net_snmp(table.oid(options_.root)),
                              to_net_snmp(table.region(options_.root))});
    Registration &registration = registrations_.back();
    netsnmp_handler_registration *handler = netsnmp_create_handler_registration(
        table.name.c_str(), on_request, registration.region.data(), registration.region.size(),
        options_.is_writable ? HANDLER_CAN_RWRITE : HANDLER_CAN_RONLY);
    handler->handler->myvoid = &registration;
    bool is_apart = table.is_of_host && !options_.is_host_replaced;
    const std::string &context = is_apart ? options_.host_context : options_.context;
    if (!context.empty()) handler->contextName = strdup(context.c_str());
    if (table.is_of_host && !is_apart) handler->priority = kPriorityOverHost;
    if (netsnmp_register_handler(handler) != MIB_REGISTERED_OK) {
      throw Failure(fmt::format("oltsnmp: {} cannot be registered", table.name));
    }
  }

  void register_metrics() {
    u_long *values[] = {&metrics_.reads,        &metrics_.requests, &metrics_.delegated,
                        &metrics_.deadlines,    &metrics_.refused,  &metrics_.late,
                        &metrics_.sessions_lost};
    const std::vector<AgentScalar> &scalars = agent_scalars();
    for (size_t i = 0; i < scalars.size(); ++i) {
      std::vector<oid> name = to_net_snmp(scalars[i].oid(options_.root));
      netsnmp_handler_registration *handler = netsnmp_create_handler_registration(
          scalars[i].name.c_str(), nullptr, name.data(), name.size(), HANDLER_CAN_RONLY);
      if (!options_.context.empty()) handler->contextName = strdup(options_.context.c_str());
      netsnmp_watcher_info *watcher =
          netsnmp_create_watcher_info(values[i], sizeof(u_long), ASN_COUNTER, WATCHER_FIXED_SIZE);
      netsnmp_register_watched_scalar(handler, watcher);
    }
  }

  void disconnect() {
    // net-snmp would free its argument.
    snmp_unregister_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_INDEX_START, on_session,
                             this, 1);
    snmp_unregister_callback(SNMP_CALLBACK_APPLICATION, SNMPD_CALLBACK_INDEX_STOP, on_session_lost,
                             this, 1);
    snmp_shutdown(kName);
  }

  void take_signal() {
    signalfd_siginfo signal{};
    if (read(signals_.get(), &signal, sizeof signal) == sizeof signal) {
      signal_ = static_cast<int>(signal.ssi_signo);
    }
  }

  static int on_session(int /*major*/, int /*minor*/, void * /*server*/, void *session) {
    static_cast<Session *>(session)->is_connected_ = true;
    return 0;
  }

  static int on_session_lost(int /*major*/, int /*minor*/, void * /*server*/, void *session) {
    static_cast<Session *>(session)->is_connected_ = false;
    ++static_cast<Session *>(session)->metrics_.sessions_lost;
    snmp_alarm_register_hr({0, 0}, 0, hasten_reconnection, nullptr);
    return 0;
  }

  /// The alarm that net-snmp registers right after this one tries to reconnect. It would do so each
  /// second, as pings are sent: its interval has no fractions.
  static void hasten_reconnection(unsigned alarm, void * /*unused*/) {
    // New alarms are at the end of the list.
    snmp_alarm *attempt = sa_find_next();
    while (attempt != nullptr && attempt->clientreg != alarm + 1) attempt = attempt->next;
    if (attempt == nullptr || attempt->clientarg != nullptr) return;
    attempt->t = kReconnectInterval;
    snmp_alarm_reset(attempt->clientreg);
  }

  void count_reads() {
    metrics_.reads = 0;
    for (const auto &[number, module] : modules_) metrics_.reads += module.worker->reads();
  }

  // Notifications.

  /// Without a session nobody would be told of a change: it is found later.
  static void on_turn(unsigned /*alarm*/, void *session) {
    auto *self = static_cast<Session *>(session);
    if (self->is_connected_ && self->poll_ == nullptr) self->poll();
  }

  void poll() {
    std::optional<Task> task = poller_.next(Poller::Clock::now());
    if (!task) return;
    Module &module = modules_[task->table->reader->address.module];
    if (module.is_stuck) {
      poller_.take({});
      return;
    }
    poll_ = std::make_shared<Poll>();
    poll_->module = &module;
    poll_->tasks.push_back(std::move(*task));
    poll_->alarm = snmp_alarm_register_hr(kDeadline, 0, on_poll_deadline, this);
    module.worker->submit(poll_);
  }

  /// The other modules are not kept waiting.
  static void on_poll_deadline(unsigned /*alarm*/, void *session) {
    auto *self = static_cast<Session *>(session);
    self->poll_->alarm = 0;
    get_stuck(*self->poll_->module);
    self->poller_.take({});
    self->poll_ = nullptr;
  }

  void finish(const Poll &poll) {
    if (poll.alarm != 0) snmp_alarm_unregister(poll.alarm);
    const Task &task = poll.tasks.front();
    note_answer(task);
    if (&poll != poll_.get()) return;  // too late
    if (std::optional<Change> change = poller_.take(task)) {
      const Column &column = change->table->columns[change->column];
      Oid name = change->table->oid(options_.root);
      const Key below = name_of(*change->table, change->column, change->row.key);
      name.insert(name.end(), below.begin(), below.end());
      notify(change->event, name, asn_type(column.type),
             value_of(column, change->row.record).number);
    }
    poll_ = nullptr;
  }

  /// The library puts sysUpTime in front.
  void notify(Event event, const Oid &object, u_char type, int64_t value) const {
    static constexpr oid kTrapOid[] = {1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};
    Oid trap = options_.root;
    trap.insert(trap.end(), {kNotificationArc, static_cast<uint32_t>(event)});
    std::vector<oid> trap_name = to_net_snmp(trap);
    std::vector<oid> object_name = to_net_snmp(object);
    long number = static_cast<long>(value);
    netsnmp_variable_list *variables = nullptr;
    snmp_varlist_add_variable(&variables, kTrapOid, std::size(kTrapOid), ASN_OBJECT_ID,
                              trap_name.data(), trap_name.size() * sizeof(oid));
    snmp_varlist_add_variable(&variables, object_name.data(), object_name.size(), type, &number,
                              sizeof number);
    send_v2trap(variables);
    snmp_free_varbind(variables);
  }

  // Requests of the master.

  static int on_request(netsnmp_mib_handler *handler, netsnmp_handler_registration *registered,
                        netsnmp_agent_request_info *info, netsnmp_request_info *requests) {
    auto *registration = static_cast<Registration *>(handler->myvoid);
    registration->session->take(*registration, handler, registered, info, requests);
    return SNMP_ERR_NOERROR;
  }

  void take(Registration &of, netsnmp_mib_handler *handler,
            netsnmp_handler_registration *registered, netsnmp_agent_request_info *info,
            netsnmp_request_info *requests) {
    auto request = std::make_shared<Request>();
    request->of = &of;
    request->mode = info->mode;
    for (netsnmp_request_info *one = requests; one != nullptr; one = one->next) {
      ++metrics_.requests;
      if (one->processed == 0) begin(*request, info, one);
    }
    if (request->tasks.empty()) return;
    ++metrics_.delegated;
    for (const Item &item : request->items) item.request->delegated = 1;
    request->delegated =
        netsnmp_create_delegated_cache(handler, registered, info, requests, nullptr);
    request->sessions_lost = static_cast<unsigned>(metrics_.sessions_lost);
    request->alarm = snmp_alarm_register_hr(kDeadline, 0, on_deadline, request.get());
    live_.insert(request);
    of.module->worker->submit(request);
  }

  /// Answers the variable, or adds a task for it.
  void begin(Request &request, netsnmp_agent_request_info *info, netsnmp_request_info *one) {
    const Registration &of = *request.of;
    if (info->mode == MODE_GETNEXT) {
      begin_next(request, info, one);
      return;
    }
    std::optional<Cell> cell = cell_named(*of.table, suffix(of, *one->requestvb));
    if (is_read(info->mode)) {
      if (!cell) {
        netsnmp_set_request_error(info, one, SNMP_NOSUCHOBJECT);
        return;
      }
      // Also what a GETNEXT tries first that enters the region of a standard scalar.
      if (cell->key.empty()) {
        netsnmp_set_request_error(info, one, SNMP_NOSUCHINSTANCE);
        return;
      }
      add(request, info, {one, cell->column, false},
          {.table = of.table, .selection = Selection::kThis, .key = cell->key});
      return;
    }
    begin_set(request, info, one, cell);
  }

  /// A manager that comes in from before this table, as the end of a GETBULK over the table in
  /// front does, must not lose that table's rows to an error of this one.
  void begin_next(Request &request, netsnmp_agent_request_info *info, netsnmp_request_info *one) {
    const Registration &of = *request.of;
    const netsnmp_variable_list &variable = *one->requestvb;
    int order =
        snmp_oid_compare(variable.name, variable.name_length, of.region.data(), of.region.size());
    bool is_passed_over = order < 0 || (order == 0 && one->inclusive != 0);
    std::optional<Cell> cell;
    if (order < 0) {
      cell = Cell{};
    } else if (netsnmp_oid_is_subtree(of.region.data(), of.region.size(), variable.name,
                                      variable.name_length) == 0) {
      cell = cell_after(*of.table, suffix(of, variable));
    }
    if (!cell) return;
    add(request, info, {one, cell->column, is_passed_over},
        {.table = of.table, .selection = Selection::kNext, .key = std::move(cell->key)});
  }

  /// What follows the table's own name.
  static Key suffix(const Registration &of, const netsnmp_variable_list &variable) {
    if (variable.name_length < of.name.size()) return {};
    return {variable.name + of.name.size(), variable.name + variable.name_length};
  }

  void add(Request &request, netsnmp_agent_request_info *info, Item item, Task task) {
    if (task.column == nullptr && !task.is_fresh && advance(*request.of, info, item, task)) return;
    if (request.of->module->is_stuck) {
      ++metrics_.refused;
      fail(info, item, failure_of(request.mode));
      return;
    }
    request.items.push_back(item);
    request.tasks.push_back(std::move(task));
  }

  /// Takes the variable as far as the cache allows. @return whether it is answered
  bool advance(const Registration &of, netsnmp_agent_request_info *info, Item &item, Task &task) {
    while (auto known = cache_.find(*of.table, task.selection, task.key)) {
      if (known->walk != nullptr) of.module->worker->follow(std::move(known->walk));
      if (apply(of, info, item, task, *known->answer)) return true;
    }
    return false;
  }

  /// Answers the variable, or moves on to the next column. @return whether it is answered
  static bool apply(const Registration &of, netsnmp_agent_request_info *info, Item &item,
                    Task &task, const Answer &answer) {
    if (answer.outcome == Outcome::kFound) {
      const Column &column = of.table->columns[item.column];
      netsnmp_variable_list *variable = item.request->requestvb;
      if (task.selection == Selection::kNext) {
        std::vector<oid> name = of.name;
        const Key below = name_of(*of.table, item.column, answer.row.key);
        name.insert(name.end(), below.begin(), below.end());
        snmp_set_var_objid(variable, name.data(), name.size());
      }
      set_value(variable, column, value_of(column, answer.row.record));
      return true;
    }
    if (task.selection == Selection::kThis) {
      netsnmp_set_request_error(info, item.request, SNMP_NOSUCHINSTANCE);
      return true;
    }
    // After the last column the variable stays as it is: the agent goes on to the next table.
    if (++item.column == of.table->columns.size()) return true;
    task.key.clear();
    return false;
  }

  static void fail(netsnmp_agent_request_info *info, const Item &item, int status) {
    item.request->delegated = 0;
    if (!item.is_passed_over) netsnmp_set_request_error(info, item.request, status);
  }

  // The phases of a SET: syntax; the present value, for UNDO; the write; its end.

  void begin_set(Request &request, netsnmp_agent_request_info *info, netsnmp_request_info *one,
                 const std::optional<Cell> &cell) {
    const Table &table = *request.of->table;
    const Column *column = cell ? &table.columns[cell->column] : nullptr;
    switch (info->mode) {
      case MODE_SET_RESERVE1:
        check_syntax(info, one, column);
        return;
      case MODE_SET_RESERVE2:
        add(request, info, {one, cell->column, false},
            {.table = &table, .selection = Selection::kThis, .key = cell->key, .is_fresh = true});
        return;
      case MODE_SET_ACTION:
        add(request, info, {one, cell->column, false},
            {.table = &table,
             .column = column,
             .key = cell->key,
             .bytes = *bytes_of(*column, value_in(*one->requestvb, *column))});
        return;
      case MODE_SET_UNDO: {
        const auto *old = static_cast<const Bytes *>(netsnmp_request_get_list_data(one, kOldValue));
        if (old == nullptr) return;
        add(request, info, {one, cell->column, false},
            {.table = &table, .column = column, .key = cell->key, .bytes = *old});
        return;
      }
      default:  // COMMIT and FREE: the old value is freed with the request
        return;
    }
  }

  void check_syntax(netsnmp_agent_request_info *info, netsnmp_request_info *one,
                    const Column *column) const {
    const netsnmp_variable_list &variable = *one->requestvb;
    int error = SNMP_ERR_NOERROR;
    if (!options_.is_writable || column == nullptr || column->setter == nullptr) {
      error = SNMP_ERR_NOTWRITABLE;
    } else if (variable.type != asn_type(column->type)) {
      error = SNMP_ERR_WRONGTYPE;
    } else if (!bytes_of(*column, value_in(variable, *column))) {
      error = is_number(column->type) ? SNMP_ERR_WRONGVALUE : SNMP_ERR_WRONGLENGTH;
    }
    if (error != SNMP_ERR_NOERROR) netsnmp_set_request_error(info, one, error);
  }

  // Answers of the workers.

  void finish() {
    for (const std::shared_ptr<Job> &job : done_.take()) {
      if (auto poll = std::dynamic_pointer_cast<Poll>(job)) {
        get_unstuck(*poll->module);
        finish(*poll);
        continue;
      }
      auto request = std::static_pointer_cast<Request>(job);
      get_unstuck(*request->of->module);
      for (const Task &task : request->tasks) note_answer(task);
      if (!request->is_answered && is_valid(*request)) {
        complete(request);
      } else {
        if (request->is_abandoned) ++metrics_.late;
        forget(request);
      }
    }
  }

  static void get_stuck(Module &module) {
    if (module.is_stuck) return;
    module.is_stuck = true;
    module.alarm = snmp_alarm_register_hr(kGrace, 0, on_lost, &module);
  }

  static void get_unstuck(Module &module) {
    module.is_stuck = false;
    if (module.alarm != 0) snmp_alarm_unregister(module.alarm);
    module.alarm = 0;
  }

  static void on_lost(unsigned /*alarm*/, void *stuck) {
    auto *module = static_cast<Module *>(stuck);
    module->alarm = 0;
    // When this thread was held up, the answer may be waiting for it.
    if (!module->worker->is_idle()) module->session->note(module->worker->asked_module(), false);
  }

  /// An answer from the cache says nothing about the module.
  void note_answer(const Task &task) {
    if (!task.was_called) return;
    const catalog::Operation *stepper = task.table->stepper;
    bool is_stepped = stepper != nullptr && task.selection == Selection::kNext &&
                      task.answer.module == task.table->reader->address.module;
    // The reader is asked after the stepper has answered.
    if (is_stepped && stepper->address.module != task.answer.module) {
      note(stepper->address.module, true);
    }
    note(task.answer.module, !task.answer.is_lost());
  }

  /// Notes whether the module is there.
  void note(uint8_t number, bool is_there) {
    auto asked = modules_.find(number);
    if (asked == modules_.end()) return;
    Module &module = asked->second;
    if (module.is_lost != is_there) return;
    module.is_lost = !is_there;
    log_line(is_there ? LOG_NOTICE : LOG_WARNING,
             fmt::format("module {} {}", name_of_module(module.number),
                         is_there ? "answers again" : "does not answer"));
    if (is_there) poller_.forget_times();
    Oid object = module_object().oid(options_.root);
    object.push_back(0);
    notify(is_there ? Event::kModuleBack : Event::kModuleLost, object, ASN_UNSIGNED, module.number);
  }

  void complete(const std::shared_ptr<Request> &request) {
    netsnmp_agent_request_info *info = request->delegated->reqinfo;
    std::vector<Item> items;
    std::vector<Task> tasks;
    for (size_t i = 0; i < request->items.size(); ++i) {
      Item &item = request->items[i];
      Task &task = request->tasks[i];
      if (is_read(request->mode)) {
        if (task.answer.outcome == Outcome::kFailed) {
          fail(info, item, SNMP_ERR_GENERR);
        } else if (apply(*request->of, info, item, task, task.answer) ||
                   advance(*request->of, info, item, task)) {
          item.request->delegated = 0;
        } else {
          items.push_back(item);
          tasks.push_back(std::move(task));
        }
        continue;
      }
      item.request->delegated = 0;
      end_phase(*request, info, item, task);
    }
    if (items.empty()) {
      forget(request);
      return;
    }
    request->items = std::move(items);
    request->tasks = std::move(tasks);
    request->of->module->worker->submit(request);  // with the same deadline
  }

  static void end_phase(const Request &request, netsnmp_agent_request_info *info, const Item &item,
                        const Task &task) {
    if (task.answer.outcome == Outcome::kNone) {
      netsnmp_set_request_error(info, item.request, SNMP_ERR_NOCREATION);
    } else if (task.answer.outcome == Outcome::kFailed) {
      netsnmp_set_request_error(info, item.request, failure_of(request.mode));
    } else if (request.mode == MODE_SET_RESERVE2) {
      const catalog::Field &field = request.of->table->columns[item.column].field;
      const Bytes &record = task.answer.row.record;
      auto *old =
          new Bytes(record.data() + field.offset, record.data() + field.offset + field.width);
      netsnmp_request_add_list_data(item.request,
                                    netsnmp_create_data_list(kOldValue, old, [](void *bytes) {
                                      delete static_cast<Bytes *>(bytes);
                                    }));
    }
  }

  static void on_deadline(unsigned /*alarm*/, void *pending) {
    auto *request = static_cast<Request *>(pending);
    request->of->session->expire(*request);
  }

  /// The worker's answer comes too late for the master; its job ends when it does come.
  void expire(Request &request) {
    request.alarm = 0;
    request.is_abandoned = true;
    if (request.is_answered || !is_valid(request)) return;
    ++metrics_.deadlines;
    get_stuck(*request.of->module);
    for (const Item &item : request.items) {
      fail(request.delegated->reqinfo, item, failure_of(request.mode));
    }
    close(request);
  }

  /// Whether the pointers of an unanswered request may still be used. One of a session that was
  /// lost is dropped: an answer to a phase of a SET would touch memory that is freed.
  bool is_valid(Request &request) {
    bool is_known = netsnmp_handler_check_cache(request.delegated) != nullptr;
    if (is_known && request.sessions_lost == metrics_.sessions_lost) return true;
    if (!is_known) {
      close(request);
      return false;
    }
    netsnmp_agent_session *dropped = request.delegated->reqinfo->asp;
    for (const std::shared_ptr<Request> &one : live_) {
      if (one->delegated != nullptr && one->delegated->reqinfo->asp == dropped) close(*one);
    }
    netsnmp_remove_and_free_agent_snmp_session(dropped);
    return false;
  }

  static void close(Request &request) {
    netsnmp_free_delegated_cache(request.delegated);
    request.delegated = nullptr;
    request.is_answered = true;
  }

  void forget(const std::shared_ptr<Request> &request) {
    if (request->alarm != 0) snmp_alarm_unregister(request->alarm);
    if (request->delegated != nullptr) close(*request);
    live_.erase(request);
  }

  SubagentOptions options_;
  std::vector<Table> tables_;
  RowReader reader_;
  RowCache cache_;
  DoneQueue done_;
  Descriptor signals_;
  EventLoop loop_;
  std::map<uint8_t, Module> modules_;
  std::list<Registration> registrations_;
  std::set<std::shared_ptr<Request>> live_;  ///< delegated, and not done
  bool is_connected_ = false;
  Poller poller_;
  std::shared_ptr<Poll> poll_;  ///< while its answer is out
  Metrics metrics_;
  int signal_ = 0;
};

Subagent::Subagent(SubagentOptions options, const catalog::Layout &layout)
    : session_(std::make_unique<Session>(std::move(options), layout)) {}

Subagent::~Subagent() = default;

int Subagent::run(const std::function<bool()> &may_end) {
  return session_->run(may_end);
}

bool Subagent::is_idle() const {
  return session_->is_idle();
}

}  // namespace olt::agent
