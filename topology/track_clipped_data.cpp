#include <orvia/topology/clipped_data.h>
#include <orvia/topology/linear_object.h>
#include <orvia/topology/parking.h>
#include <orvia/topology/track.h>

#include <algorithm>
#include <cstddef>

namespace Orvia {

void Track::AddClippedData(TrackClippedData* data) {
    if (!data) return;
    data->SetParent(this);
    data->SetInSubNetwork(m_subNetwork);
    m_ClippedData.push_back(Ruvex::CountedPtr<Ruvex::TrackClippedDataElement>(data));
}

bool Track::RemoveClippedData(size_t first, size_t count) {
    if (first >= m_ClippedData.size()) return false;
    const size_t last = first + std::min(count, m_ClippedData.size() - first);
    for (size_t i = first; i < last; ++i)
        if (TrackClippedData* data = GetClippedData(i)) {
            data->ReleaseCarriedLinks();
            data->SetParent(nullptr);
            data->SetInSubNetwork(nullptr);
        }
    m_ClippedData.erase(m_ClippedData.begin() + static_cast<std::ptrdiff_t>(first),
                        m_ClippedData.begin() + static_cast<std::ptrdiff_t>(last));
    return true;
}

TrackClippedData* Track::GetClippedData(size_t index) const {
    return index < m_ClippedData.size() ? dynamic_cast<TrackClippedData*>(m_ClippedData[index].Get())
                                        : nullptr;
}

size_t Track::GetClippedDataIndex(const ClippedData* data) const {
    if (!data) return npos;
    for (size_t i = 0; i < m_ClippedData.size(); ++i)
        if (GetClippedData(i) == data) return i;
    return npos;
}

TrackClippedData* Track::GetClippedDataByName(const char* name) const {
    if (!name) return nullptr;
    for (const auto& item : m_ClippedData)
        if (item && item->GetName() == name) return dynamic_cast<TrackClippedData*>(item.Get());
    return nullptr;
}

void Track::AttachClippedData() {
    for (size_t i = 0; i < m_ClippedData.size(); ++i) {
        TrackClippedData* data = GetClippedData(i);
        if (!data) continue;
        if (data->GetParent() != this) data->SetParent(this);
        if (data->GetInSubNetwork() != m_subNetwork)
            data->SetInSubNetwork(m_subNetwork);
        else if (m_subNetwork)
            data->UpdateQualifiedName();
        data->Validate();
        if (ParkingLot* lot = data->GetParkingLotObject()) lot->SetCarrier(this, data);
        if (LinearObject* linear = data->GetLinearObject()) linear->SetClippedData(data);
    }
}

void Track::InvalidateClippedData() {
    for (const auto& item : m_ClippedData)
        if (auto* data = dynamic_cast<TrackClippedData*>(item.Get())) data->Invalidate();
}

}  // namespace Orvia
