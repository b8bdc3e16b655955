#include <orvia/core/user_data.h>
#include <orvia/ruvex/factory.h>

namespace Orvia {

// ---------------------------------------------------------------------------------------------------------------
// UserData

UserData* UserData::Clone() const {
    Ruvex::Element* created = Ruvex::CreateElement(GetTagName());
    auto* copy = dynamic_cast<UserData*>(created);
    if (!copy) {
        if (created) created->Release();  // never referenced: destroyed
        return nullptr;
    }
    copy->CopyFrom(this);
    return copy;
}

// ---------------------------------------------------------------------------------------------------------------
// UserDataContainer

void UserDataContainer::AddUserData(UserData* data) {
    if (data) m_userData.emplace_back(data);
}

bool UserDataContainer::InsertUserData(size_t index, UserData* data) {
    if (!data || index > m_userData.size()) return false;
    m_userData.insert(m_userData.begin() + static_cast<std::ptrdiff_t>(index),
                      Ruvex::CountedPtr<UserData>(data));
    return true;
}

UserData* UserDataContainer::GetUserData(size_t index) const {
    return index < m_userData.size() ? m_userData[index].Get() : nullptr;
}

UserData* UserDataContainer::GetUserData(const std::string& tag) const {
    for (const auto& data : m_userData)
        if (data && data->GetTagName() == tag) return data.Get();
    return nullptr;
}

void UserDataContainer::RemoveUserData(const std::string& tag) {
    for (auto it = m_userData.begin(); it != m_userData.end(); ++it) {
        if (*it && (*it)->GetTagName() == tag) {
            m_userData.erase(it);
            return;
        }
    }
}

void UserDataContainer::ClearUserData() {
    m_userData.clear();
}

void UserDataContainer::CopyFrom(const UserDataContainer* other) {
    if (other == this) return;
    if (!other) {
        m_userData.clear();
        return;
    }
    // Built aside first: a datum of `other` may be held only through this list.
    std::vector<Ruvex::CountedPtr<UserData>> copies(other->m_userData.size());
    for (size_t i = 0; i < copies.size(); ++i) {
        const UserData* source = other->m_userData[i].Get();
        if (!source) continue;
        Ruvex::CountedPtr<Ruvex::Element> created(Ruvex::CreateElement(source->GetTagName()));
        if (auto* copy = dynamic_cast<UserData*>(created.Get())) {
            copy->CopyFrom(source);
            copies[i] = copy;
        }
    }
    m_userData = std::move(copies);
}

bool UserDataContainer::IsEqual(const UserDataContainer* other) const {
    if (!other) return false;
    if (other == this) return true;
    if (m_userData.size() != other->m_userData.size()) return false;
    for (size_t i = 0; i < m_userData.size(); ++i) {
        const UserData* mine = m_userData[i].Get();
        UserData* theirs = other->m_userData[i].Get();
        if (!mine || !theirs) {
            if (mine != theirs) return false;
            continue;
        }
        if (!mine->IsEqual(theirs)) return false;
    }
    return true;
}

bool UserDataContainer::TryToLoadElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    if (!element || !parser) return false;
    Ruvex::CountedPtr<Ruvex::Element> created(Ruvex::CreateElement(std::string(element->GetTagName())));
    auto* data = dynamic_cast<UserData*>(created.Get());
    if (!data) return false;
    // A datum that did not load fully is still kept: what it read (and what it preserved) goes back on save.
    data->LoadFromXMLElement(element, parser);
    m_userData.emplace_back(data);
    return true;
}

bool UserDataContainer::ToElement(Ruvex::IDOMElement* parent, Ruvex::IDOMParser* parser) {
    if (!parent || !parser) return true;
    for (const auto& data : m_userData)
        if (data)
            if (Ruvex::IDOMElement* built = data->BuildXMLElement(parser)) parent->AppendChild(built);
    return true;
}

// ---------------------------------------------------------------------------------------------------------------
// QuenbelDataElement

const std::string QuenbelDataElement::kTag = "QuenbelData";
const std::string QuenbelDataElement::kLineTag = "Line";
const std::string QuenbelDataElement::kValueTag = "value";

bool QuenbelDataElement::LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) {
    m_lines.clear();
    if (!element || !parser) return false;
    // Unknown attributes are kept by the generic reader (this element declares none).
    bool ok = LoadAttributes(element, parser);
    if (GetPreserved()) EditPreserved().nodes.clear();
    uint32_t taken = 0;
    for (Ruvex::IDOMElement* node = element->GetFirstNode(); node; node = node->GetNextNode()) {
        Ruvex::NodeKind kind = node->GetNodeKind();
        if (kind == Ruvex::NodeKind::Other) continue;
        if (kind == Ruvex::NodeKind::Element && node->GetTagName() == kLineTag) {
            std::string& line = m_lines.emplace_back();
            node->GetAttribute(kValueTag, line);
            ++taken;
            continue;
        }
        PreserveChild(node, parser, taken);
    }
    return ok && !m_lines.empty();
}

Ruvex::IDOMElement* QuenbelDataElement::BuildXMLElement(Ruvex::IDOMParser* parser) {
    Ruvex::IDOMElement* element = BuildGenericXMLElement(parser);
    if (!element) return nullptr;
    for (const std::string& line : m_lines) {
        Ruvex::IDOMElement* child = parser->CreateElement(kLineTag);
        child->SetAttribute(kValueTag, line);
        element->AppendChild(child);
    }
    return element;
}

void QuenbelDataElement::CopyFrom(const UserData* other) {
    auto* source = dynamic_cast<const QuenbelDataElement*>(other);
    if (!source || source == this) return;
    Ruvex::Element::operator=(*source);
    m_value = source->m_value;
    m_lines = source->m_lines;
}

bool QuenbelDataElement::IsEqual(UserData* other) const {
    auto* source = dynamic_cast<const QuenbelDataElement*>(other);
    return source && source->m_lines == m_lines;
}

}  // namespace Orvia
