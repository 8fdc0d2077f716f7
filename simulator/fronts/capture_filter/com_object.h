// The smallest base for COM objects.
#pragma once

#include <unknwn.h>

#include <algorithm>
#include <atomic>
#include <memory>

namespace qvx::simulator {

// The pointer to the interface with this id, among those listed; null when it is none of them.
template <class First, class... Others, class Object>
void* interfaceOf(Object* object, REFIID iid) {
  if (iid == __uuidof(First)) return static_cast<First*>(object);
  if constexpr (sizeof...(Others) != 0) {
    return interfaceOf<Others...>(object, iid);
  } else {
    return nullptr;
  }
}

// Counts references from 1 and frees itself with the last.
template <class First, class... Others>
class ComObject : public First, public Others... {
 public:
  ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = find(iid);
    if (*object == nullptr) return E_NOINTERFACE;
    this->AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~ComObject() = default;

  virtual void* find(REFIID iid) {
    if (iid == __uuidof(IUnknown)) return static_cast<First*>(this);
    return interfaceOf<First, Others...>(this, iid);
  }

 private:
  std::atomic<ULONG> references_{1};
};

// Interfaces of a COM object that live in a member of it: the object answers and counts for them.
template <class First, class... Others>
class ComPart : public First, public Others... {
 public:
  explicit ComPart(IUnknown& whole) : whole_(whole) {}
  ComPart(const ComPart&) = delete;
  ComPart& operator=(const ComPart&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    return whole_.QueryInterface(iid, object);
  }
  STDMETHODIMP_(ULONG) AddRef() override { return whole_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return whole_.Release(); }

  void* find(REFIID iid) { return interfaceOf<First, Others...>(this, iid); }

 protected:
  ~ComPart() = default;

 private:
  IUnknown& whole_;
};

// An enumerator of items that are made one by one.
template <class Enumerator, class Item>
class ItemEnumerator : public ComObject<Enumerator> {
 public:
  ItemEnumerator(ULONG count, ULONG position) : count_(count), position_(position) {}

  STDMETHODIMP Next(ULONG count, Item** items, ULONG* fetched) override {
    ULONG given = 0;
    while (given < count && position_ < count_ && SUCCEEDED(give(position_, &items[given]))) {
      ++given;
      ++position_;
    }
    if (fetched != nullptr) *fetched = given;
    return given == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Skip(ULONG count) override {
    const ULONG skipped = std::min(count, count_ - position_);
    position_ += skipped;
    return skipped == count ? S_OK : S_FALSE;
  }
  STDMETHODIMP Reset() override {
    position_ = 0;
    return S_OK;
  }
  STDMETHODIMP Clone(Enumerator** copy) override {
    *copy = cloneAt(position_);
    return S_OK;
  }

 protected:
  virtual HRESULT give(ULONG index, Item** item) = 0;
  virtual Enumerator* cloneAt(ULONG position) = 0;

 private:
  const ULONG count_;
  ULONG position_;
};

struct ComRelease {
  void operator()(IUnknown* object) const { object->Release(); }
};

// Holds a reference.
template <class Interface>
using ComPointer = std::unique_ptr<Interface, ComRelease>;

// Where a call puts the reference that it hands out.
template <class Interface>
class Receiving {
 public:
  explicit Receiving(ComPointer<Interface>& pointer) : pointer_(pointer) {}
  ~Receiving() { pointer_.reset(received_); }
  Receiving(const Receiving&) = delete;
  Receiving& operator=(const Receiving&) = delete;

  operator Interface**() { return &received_; }
  operator void**() { return reinterpret_cast<void**>(&received_); }

 private:
  ComPointer<Interface>& pointer_;
  Interface* received_ = nullptr;
};

// Hands out a new object's interface, or frees the object when it has none of that kind.
template <class Object>
HRESULT handOut(Object* object, REFIID iid, void** result) {
  const HRESULT status = object->QueryInterface(iid, result);
  object->Release();
  return status;
}

}  // namespace qvx::simulator
