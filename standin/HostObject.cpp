#include "standin/HostObject.h"

#include "standin/Ledger.h"
#include "standin/Lock.h"
#include "standin/Operation.h"
#include "standin/Services.h"

#include <array>
#include <string>

namespace standin {

namespace {

struct KindRow {
  SharedCount held;
  const char* name;
  const char* addRef;
  const char* release;
};

// In the order of the kinds.
std::array<KindRow, 4> s_Kinds{
    {{SharedCount(), "node", "INode::AddRef", "INode::Release"},
     {SharedCount(), "document", "IDocument::AddRef", "IDocument::Release"},
     {SharedCount(), "command message", "ICmdMessage::AddRef", "ICmdMessage::Release"},
     {SharedCount(), "bind message", "IBindMessage::AddRef", "IBindMessage::Release"}}};

bool IsMessage(HostObject::Kind kind) { return kind >= HostObject::Kind::CommandMessage; }

KindRow& RowOf(HostObject::Kind kind) { return s_Kinds.at(static_cast<std::size_t>(kind)); }

// Outside a call there is nobody to tell.
void ReportMisuse(const std::string& what) {
  if (Services* services = Call::Current()) {
    const Lock lock;
    services->observer.OnMisuse(what);
  }
}

}  // namespace

HostObject::Loan::Loan(const HostObject& object) : m_Object(object), m_Before(object.m_Lent.Get()) {
  object.m_Lent.Set(object.m_References.Get());
}

HostObject::Loan::~Loan() { m_Object.m_Lent.Set(m_Before); }

HostObject::HostObject(Kind kind) : m_Kind(kind) { RowOf(kind).held.Add(1); }

// There are references when the constructor of the object throws.
HostObject::~HostObject() {
  if (m_References.Get() > 0) RowOf(m_Kind).held.Subtract(1);
}

Ledger HostObject::Held() {
  const auto held = [](Kind kind) { return RowOf(kind).held.Get(); };
  return {held(Kind::Node), held(Kind::Document), held(Kind::CommandMessage),
          held(Kind::BindMessage)};
}

void HostObject::Destroy(HostObject* first) {
  while (first) {
    HostObject* const next = first->m_Next;
    delete first;
    first = next;
  }
}

std::size_t HostObject::AddReference() {
  if (!MayBeUsed()) [[unlikely]]
    ReportUse(RowOf(m_Kind).addRef);
  return m_References.Add(1);
}

std::size_t HostObject::RemoveReference() {
  if (!MayBeUsed()) [[unlikely]]
    ReportUse(RowOf(m_Kind).release);
  if (m_References.Get() == m_Lent.Get()) {
    if (m_References.Get() > 0) ReportBorrowedRelease(m_Kind);
    return m_References.Get();
  }
  const std::size_t left = m_References.Subtract(1);
  if (left > 0) return left;
  RowOf(m_Kind).held.Subtract(1);
  if (Services* services = Call::Current()) {
    m_Next = services->released;
    services->released = this;
  } else {
    Destroy(this);
  }
  return 0;
}

void HostObject::ReportBorrowedRelease(Kind kind) {
  const KindRow& row = RowOf(kind);
  ReportMisuse(std::string("release of a borrowed ") + (IsMessage(kind) ? "message" : row.name) +
               " (" + row.release + ')');
}

// Messages are the bench's, too: it may use them outside a call.
void HostObject::ReportUse(const char* operation) const {
  if (m_References.Get() == 0) {
    ReportMisuse(std::string("a ") + RowOf(m_Kind).name +
                 " was used or released after its last reference (" + operation + ')');
  }
  if (!Call::Current()) CheckThread(operation, IsMessage(m_Kind));
}

}  // namespace standin
