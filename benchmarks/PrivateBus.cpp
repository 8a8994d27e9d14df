#include "benchmarks/PrivateBus.h"

#include <dbus/dbus.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <stdexcept>

namespace {

constexpr char s_Interface[] = "org.freedesktop.DBus.Properties";
constexpr char s_Match[] = "type='signal',interface='org.freedesktop.DBus.Properties'";

DBusConnection* Connect(const char* address) {
  DBusConnection* connection = dbus_connection_open_private(address, nullptr);
  if (!connection || !dbus_bus_register(connection, nullptr)) {
    throw std::runtime_error("no connection to the bus");
  }
  return connection;
}

// Runs dbus-daemon, which writes its address and closes the pipe.
pid_t StartDaemon(std::string& address) {
  std::array<int, 2> pipe{};
  if (::pipe(pipe.data()) != 0) throw std::runtime_error("no pipe");
  const pid_t daemon = fork();
  if (daemon == 0) {
    dup2(pipe[1], STDOUT_FILENO);
    close(pipe[0]);
    close(pipe[1]);
    execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nosyslog", "--nopidfile",
           "--address=unix:tmpdir=/tmp", "--print-address=1", nullptr);
    _exit(127);
  }
  close(pipe[1]);
  for (char c = 0; read(pipe[0], &c, 1) == 1 && c != '\n';) address += c;
  close(pipe[0]);
  return daemon;
}

// Reads every argument, as any user of the values must.
std::uint64_t ReadAll(DBusMessageIter* iter) {
  std::uint64_t read = 0;
  for (int type = 0; (type = dbus_message_iter_get_arg_type(iter)) != DBUS_TYPE_INVALID;
       dbus_message_iter_next(iter)) {
    if (dbus_type_is_container(type)) {
      DBusMessageIter inner;
      dbus_message_iter_recurse(iter, &inner);
      read += ReadAll(&inner);
    } else {
      DBusBasicValue value;
      dbus_message_iter_get_basic(iter, &value);
      read += static_cast<unsigned char>(value.str[0]);
    }
  }
  return read;
}

// Tells through the pipe each time it has read a signal whose member is "Last".
[[noreturn]] void Listen(const char* address, int told) {
  DBusConnection* connection = Connect(address);
  dbus_bus_add_match(connection, s_Match, nullptr);
  char ready = 'r';
  if (write(told, &ready, 1) != 1) _exit(1);
  while (dbus_connection_read_write(connection, -1)) {
    while (DBusMessage* message = dbus_connection_pop_message(connection)) {
      DBusMessageIter iter;
      if (dbus_message_iter_init(message, &iter)) ReadAll(&iter);
      const bool last = dbus_message_is_signal(message, s_Interface, "Last");
      dbus_message_unref(message);
      if (last && write(told, &ready, 1) != 1) _exit(1);
    }
  }
  _exit(0);
}

void AppendValues(DBusMessageIter* properties, const Element& element) {
  if (element.children.empty()) {
    DBusMessageIter entry;
    DBusMessageIter variant;
    const char* name = element.name.c_str();
    const char* text = element.text.c_str();
    dbus_message_iter_open_container(properties, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
    dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &name);
    dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, "s", &variant);
    dbus_message_iter_append_basic(&variant, DBUS_TYPE_STRING, &text);
    dbus_message_iter_close_container(&entry, &variant);
    dbus_message_iter_close_container(properties, &entry);
  }
  for (const auto& child : element.children) AppendValues(properties, *child);
}

DBusMessage* NewSignal(const Element& root, const char* member) {
  DBusMessage* message = dbus_message_new_signal("/player", s_Interface, member);
  DBusMessageIter iter;
  DBusMessageIter properties;
  DBusMessageIter invalidated;
  const char* interface = root.name.c_str();
  dbus_message_iter_init_append(message, &iter);
  dbus_message_iter_append_basic(&iter, DBUS_TYPE_STRING, &interface);
  dbus_message_iter_open_container(&iter, DBUS_TYPE_ARRAY, "{sv}", &properties);
  AppendValues(&properties, root);
  dbus_message_iter_close_container(&iter, &properties);
  dbus_message_iter_open_container(&iter, DBUS_TYPE_ARRAY, "s", &invalidated);
  dbus_message_iter_close_container(&iter, &invalidated);
  return message;
}

void AwaitByte(int pipe) {
  char byte = 0;
  if (read(pipe, &byte, 1) != 1) throw std::runtime_error("the listener has gone");
}

}  // namespace

PrivateBus::PrivateBus() {
  std::string address;
  m_Daemon = StartDaemon(address);
  std::array<int, 2> pipe{};
  if (::pipe(pipe.data()) != 0) throw std::runtime_error("no pipe");
  m_Listener = fork();
  if (m_Listener == 0) Listen(address.c_str(), pipe[1]);
  close(pipe[1]);
  m_Counted = pipe[0];
  AwaitByte(m_Counted);
  m_Connection = Connect(address.c_str());
}

PrivateBus::~PrivateBus() {
  dbus_connection_close(m_Connection);
  dbus_connection_unref(m_Connection);
  close(m_Counted);
  for (const pid_t child : {m_Listener, m_Daemon}) {
    kill(child, SIGTERM);
    waitpid(child, nullptr, 0);
  }
}

void PrivateBus::Send(const Element& root, std::size_t times) {
  for (std::size_t i = 1; i <= times; ++i) {
    DBusMessage* signal = NewSignal(root, i == times ? "Last" : "PropertiesChanged");
    dbus_connection_send(m_Connection, signal, nullptr);
    dbus_message_unref(signal);
  }
  dbus_connection_flush(m_Connection);
  AwaitByte(m_Counted);
}
