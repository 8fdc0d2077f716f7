#include "simulator/fronts/capture_filter/capture_filter.h"

#include <bit>
#include <string>

#include "simulator/fronts/capture_filter/capture_pin.h"
#include "simulator/model/picture_controls.h"

namespace qvx::simulator {

namespace {

class CaptureFilter final
    : public ComObject<IBaseFilter, IAMVideoProcAmp, IKsTopologyInfo, IKsControl> {
 public:
  explicit CaptureFilter(const CameraRecord& record)
      : camera_(PipeClient::of(record.pipe)),
        hasTopology_(record.unit != Unit::plain),
        extensions_(extensionsOf(record.unit)),
        pin_(*this, camera_, record.productId) {}

  // The class of capture filters of real cameras.
  STDMETHODIMP GetClassID(CLSID* id) override {
    *id = CLSID_Proxy;
    return S_OK;
  }

  STDMETHODIMP Stop() override {
    pin_.stream().stop();
    state_ = State_Stopped;
    return S_OK;
  }
  STDMETHODIMP Pause() override {
    pin_.stream().pause();
    state_ = State_Paused;
    return S_OK;
  }
  STDMETHODIMP Run(REFERENCE_TIME start) override {
    if (state_ == State_Stopped) pin_.stream().pause();
    pin_.stream().run(start, clock_);
    state_ = State_Running;
    return S_OK;
  }
  STDMETHODIMP GetState(DWORD, FILTER_STATE* state) override {
    *state = state_;
    return state_ == State_Paused ? VFW_S_CANT_CUE : S_OK;
  }
  STDMETHODIMP SetSyncSource(IReferenceClock* clock) override {
    clock_ = clock;
    return S_OK;
  }
  STDMETHODIMP GetSyncSource(IReferenceClock** clock) override { return clock_.CopyTo(clock); }

  STDMETHODIMP EnumPins(IEnumPins** pins) override {
    *pins = new ItemEnumerator<IEnumPins, IPin>(
        1, [pin = ComPtr<IPin>(&pin_)](ULONG, IPin** item) { return pin.CopyTo(item); });
    return S_OK;
  }
  STDMETHODIMP FindPin(LPCWSTR id, IPin** pin) override {
    *pin = nullptr;
    if (std::wstring_view(id) != CapturePin::name) return VFW_E_NOT_FOUND;
    *pin = &pin_;
    pin_.AddRef();
    return S_OK;
  }
  STDMETHODIMP QueryFilterInfo(FILTER_INFO* info) override {
    *info = {};
    name_.copy(info->achName, std::size(info->achName) - 1);
    info->pGraph = graph_;
    if (graph_ != nullptr) graph_->AddRef();
    return S_OK;
  }
  STDMETHODIMP JoinFilterGraph(IFilterGraph* graph, LPCWSTR name) override {
    graph_ = graph;
    name_ = name == nullptr ? L"" : name;
    return S_OK;
  }
  STDMETHODIMP QueryVendorInfo(LPWSTR*) override { return E_NOTIMPL; }

  // IAMVideoProcAmp
  STDMETHODIMP GetRange(long property, long* min, long* max, long* step, long* defaultValue,
                        long* flags) override {
    PictureValue current;
    if (!transferPicture(property, false, current)) return E_PROP_ID_UNSUPPORTED;
    const PictureControl& control = *pictureControl(property);
    *min = control.min;
    *max = control.max;
    *step = control.step;
    *defaultValue = control.defaultValue;
    *flags = VideoProcAmp_Flags_Manual | (control.hasAutomatic ? VideoProcAmp_Flags_Auto : 0);
    return S_OK;
  }
  STDMETHODIMP Set(long property, long value, long flags) override {
    PictureValue wanted = {value, flags == VideoProcAmp_Flags_Auto};
    return transferPicture(property, true, wanted) ? S_OK : E_INVALIDARG;
  }
  STDMETHODIMP Get(long property, long* value, long* flags) override {
    PictureValue current;
    if (!transferPicture(property, false, current)) return E_PROP_ID_UNSUPPORTED;
    *value = current.value;
    *flags = current.automatic != 0 ? VideoProcAmp_Flags_Auto : VideoProcAmp_Flags_Manual;
    return S_OK;
  }

  // IKsTopologyInfo. The nodes: camera terminal, processing unit, extension units, streaming
  // terminal.
  STDMETHODIMP get_NumCategories(DWORD* count) override {
    *count = 1;
    return S_OK;
  }
  STDMETHODIMP get_Category(DWORD index, GUID* category) override {
    if (index != 0) return E_INVALIDARG;
    *category = {STATIC_KSCATEGORY_VIDEO};
    return S_OK;
  }
  STDMETHODIMP get_NumConnections(DWORD* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP get_ConnectionInfo(DWORD, KSTOPOLOGY_CONNECTION*) override { return E_INVALIDARG; }
  STDMETHODIMP get_NodeName(DWORD, WCHAR*, DWORD, DWORD* length) override {
    *length = 0;
    return E_NOTIMPL;
  }
  STDMETHODIMP get_NumNodes(DWORD* count) override {
    *count = nodeCount();
    return S_OK;
  }
  STDMETHODIMP get_NodeType(DWORD node, GUID* type) override {
    constexpr GUID first[] = {{STATIC_KSNODETYPE_VIDEO_CAMERA_TERMINAL},
                              {STATIC_KSNODETYPE_VIDEO_PROCESSING}};
    if (node >= nodeCount()) return E_INVALIDARG;
    *type = node < firstExtension     ? first[node]
            : node == nodeCount() - 1 ? GUID{STATIC_KSNODETYPE_VIDEO_STREAMING}
                                      : GUID{STATIC_KSNODETYPE_DEV_SPECIFIC};
    return S_OK;
  }
  STDMETHODIMP CreateNodeInstance(DWORD node, REFIID iid, void** object) override {
    return node < nodeCount() ? QueryInterface(iid, object) : E_INVALIDARG;
  }

  // IKsControl: requests to extension units, passed on unchanged.
  STDMETHODIMP KsProperty(PKSPROPERTY property, ULONG propertySize, LPVOID data, ULONG dataSize,
                          ULONG* returned) override {
    if (returned == nullptr) return E_POINTER;
    *returned = 0;
    const bool ofNode = (property->Flags & KSPROPERTY_TYPE_TOPOLOGY) != 0;
    if (!ofNode || propertySize < sizeof(KSP_NODE)) return failure(ERROR_INVALID_PARAMETER);
    const ULONG node = reinterpret_cast<const KSP_NODE*>(property)->NodeId;
    if (node >= nodeCount()) return failure(ERROR_INVALID_PARAMETER);
    if (!has(node, property->Set)) return failure(ERROR_SET_NOT_FOUND);

    const ULONG type = property->Flags & ~ULONG{KSPROPERTY_TYPE_TOPOLOGY};
    const bool sets = type == KSPROPERTY_TYPE_SET;
    if (type == KSPROPERTY_TYPE_SETSUPPORT) return S_OK;
    if (!sets && type != KSPROPERTY_TYPE_GET) return failure(ERROR_NOT_SUPPORTED);
    const RequestHead head{RequestKind::property, sets, property->Id,
                           std::bit_cast<PropertySetId>(property->Set)};
    const auto moved = camera_.transfer(head, {static_cast<std::uint8_t*>(data), dataSize});
    if (!moved) return failure(ERROR_GEN_FAILURE);
    if (!sets) *returned = static_cast<ULONG>(*moved);
    return S_OK;
  }
  STDMETHODIMP KsMethod(PKSMETHOD, ULONG, LPVOID, ULONG, ULONG*) override { return E_NOTIMPL; }
  STDMETHODIMP KsEvent(PKSEVENT, ULONG, LPVOID, ULONG, ULONG*) override { return E_NOTIMPL; }

 protected:
  void* find(REFIID iid) override {
    const bool isTopology = iid == __uuidof(IKsTopologyInfo) || iid == __uuidof(IKsControl);
    if (isTopology && !hasTopology_) return nullptr;
    if (iid == __uuidof(IMediaFilter) || iid == __uuidof(IPersist)) {
      return static_cast<IBaseFilter*>(this);
    }
    return ComObject::find(iid);
  }

 private:
  // The property set of each extension unit; null for a foreign one.
  using Extensions = std::span<const PropertySetId* const>;

  static constexpr DWORD firstExtension = 2;

  // The bridge's units follow a foreign one: a client has to ask each unit for its property set.
  static Extensions extensionsOf(Unit unit) {
    static constexpr const PropertySetId* bridge[] = {nullptr, &bridgeRegisterSet,
                                                      &bridgeCommandSet};
    static constexpr const PropertySetId* variant1[] = {&bridgeVariant1Set};
    if (unit == Unit::bridge) return bridge;
    if (unit == Unit::variant1) return variant1;
    return unit == Unit::foreign ? Extensions(bridge).first(1) : Extensions();
  }

  static HRESULT failure(DWORD error) { return HRESULT_FROM_WIN32(error); }

  DWORD nodeCount() const { return firstExtension + static_cast<DWORD>(extensions_.size()) + 1; }

  bool has(ULONG node, const GUID& set) const {
    if (node < firstExtension || node == nodeCount() - 1) return false;
    const PropertySetId* const own = extensions_[node - firstExtension];
    return own != nullptr && *own == std::bit_cast<PropertySetId>(set);
  }

  bool transferPicture(long property, bool sets, PictureValue& value) {
    const RequestHead head{RequestKind::picture, sets, static_cast<std::uint32_t>(property)};
    auto* const bytes = reinterpret_cast<std::uint8_t*>(&value);
    return camera_.transfer(head, {bytes, sizeof value}) == sizeof value;
  }

  PipeClient& camera_;
  const bool hasTopology_;
  const Extensions extensions_;
  CapturePin pin_;

  FILTER_STATE state_ = State_Stopped;
  ComPtr<IReferenceClock> clock_;
  IFilterGraph* graph_ = nullptr;  // not counted: the graph owns the filter
  std::wstring name_;
};

}  // namespace

IBaseFilter* makeCaptureFilter(const CameraRecord& camera) {
  return new CaptureFilter(camera);
}

}  // namespace qvx::simulator
