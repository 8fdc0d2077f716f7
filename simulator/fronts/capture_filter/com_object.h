// A minimal base for COM objects.
#pragma once

#include <unknwn.h>
#include <wrl/client.h>

#include <algorithm>
#include <atomic>
#include <functional>

namespace qvx::simulator {

using Microsoft::WRL::ComPtr;

// The object's interface with this id, out of the listed ones; the first of them serves as
// IUnknown. Null for any other id.
template <class First, class... Interfaces, class Object>
void* interfaceOf(Object* object, REFIID iid) {
  const bool isFirst = iid == __uuidof(IUnknown) || iid == __uuidof(First);
  void* found = isFirst ? static_cast<First*>(object) : nullptr;
  ((iid == __uuidof(Interfaces) ? found = static_cast<Interfaces*>(object) : nullptr), ...);
  return found;
}

// Starts with one reference and deletes itself with the last.
template <class First, class... Others>
class ComObject : public First, public Others... {
 public:
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

  virtual void* find(REFIID iid) { return interfaceOf<First, Others...>(this, iid); }

 private:
  std::atomic<ULONG> references_{1};
};

// An enumerator that creates its items on demand.
template <class Enumerator, class Item>
class ItemEnumerator final : public ComObject<Enumerator> {
 public:
  using Give = std::function<HRESULT(ULONG index, Item** item)>;

  ItemEnumerator(std::size_t count, Give give, ULONG position = 0)
      : count_(static_cast<ULONG>(count)), give_(std::move(give)), position_(position) {}

  STDMETHODIMP Next(ULONG count, Item** items, ULONG* fetched) override {
    ULONG given = 0;
    while (given < count && position_ < count_ && SUCCEEDED(give_(position_, &items[given]))) {
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
    *copy = new ItemEnumerator(count_, give_, position_);
    return S_OK;
  }

 private:
  const ULONG count_;
  const Give give_;
  ULONG position_;
};

// Passes a new object on as the requested interface; deletes it if it does not have that.
inline HRESULT handOut(IUnknown* object, REFIID iid, void** result) {
  const HRESULT status = object->QueryInterface(iid, result);
  object->Release();
  return status;
}

}  // namespace qvx::simulator
