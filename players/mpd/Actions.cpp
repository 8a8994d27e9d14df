#include "players/mpd/Actions.h"

#include "players/mpd/Id.h"

namespace mpdplayer {

const Actions::Row* Actions::Find(const std::string& verb) {
  static constexpr Row rows[] = {{"now:", &Actions::Now},     {"next:", &Actions::Next},
                                 {"end:", &Actions::End},     {"remove:", &Actions::Remove},
                                 {"clear:", &Actions::Clear}, {"output:", &Actions::Switch}};
  for (const Row& row : rows) {
    if (verb == row.verb) return &row;
  }
  return nullptr;
}

bool Actions::IsAction(const std::string& id) { return Find(SplitId(id).first) != nullptr; }

std::vector<ItemTexts> Actions::For(const std::string& id) {
  if (id == "queue") return {{"clear:queue", "action", "Clear the queue"}};
  const bool queued = SplitId(id).first == "queue:";
  std::vector<ItemTexts> items = {
      {"now:" + id, "action", "Play now"},
      {"next:" + id, "action", "Play next"},
      {"end:" + id, "action", queued ? "Move to the end" : "Add to the queue"}};
  if (queued) items.push_back({"remove:" + id, "action", "Take out of the queue"});
  return items;
}

void Actions::Do(const std::string& id, const Ended& ended) {
  const auto [verb, subject] = SplitId(id);
  (this->*Find(verb)->handler)(subject, ended);
}

void Actions::Now(const std::string& id, const Ended& ended) {
  m_Queue.Add(id, Queue::Where::Now, ended);
}

void Actions::Next(const std::string& id, const Ended& ended) {
  m_Queue.Add(id, Queue::Where::Next, ended);
}

void Actions::End(const std::string& id, const Ended& ended) {
  m_Queue.Add(id, Queue::Where::End, ended);
}

void Actions::Remove(const std::string& id, const Ended& ended) { m_Queue.Remove(id, ended); }

void Actions::Clear(const std::string&, const Ended& ended) {
  m_Link.AskNext({"clear", {}, ended});
}

void Actions::Switch(const std::string& output, const Ended& ended) {
  m_Link.AskNext({"toggleoutput " + Argument(output), {}, ended});
}

}  // namespace mpdplayer
