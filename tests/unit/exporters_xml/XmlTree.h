#pragma once

#include <QByteArray>
#include <QXmlStreamReader>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace zuvo::tests {

/// An element as a reader that did not write it sees it.
struct XmlElement {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::string text; ///< its own, without that of its children
    std::vector<XmlElement> children;

    /// All children of this name, in order.
    [[nodiscard]] std::vector<const XmlElement*> all(const std::string& childName) const {
        std::vector<const XmlElement*> found;
        for (const auto& child : children) {
            if (child.name == childName)
                found.push_back(&child);
        }
        return found;
    }

    /// The one child of this name; an empty element, and a failure of the running test, if there is not exactly one.
    [[nodiscard]] const XmlElement& one(const std::string& childName) const {
        static const XmlElement none;
        const auto found = all(childName);
        EXPECT_EQ(found.size(), 1U) << childName << " in " << name;
        return found.size() == 1 ? *found.front() : none;
    }

    [[nodiscard]] const std::string& attribute(const std::string& attributeName) const {
        static const std::string none;
        const auto found = attributes.find(attributeName);
        EXPECT_NE(found, attributes.end()) << attributeName << " of " << name;
        return found == attributes.end() ? none : found->second;
    }
};

inline void readContent(QXmlStreamReader& reader, XmlElement& element) {
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::EndElement)
            return;
        if (token == QXmlStreamReader::Characters)
            element.text += reader.text().toString().toStdString();
        if (token != QXmlStreamReader::StartElement)
            continue;
        XmlElement child;
        child.name = reader.name().toString().toStdString();
        const auto attributes = reader.attributes();
        for (const auto& attribute : attributes)
            child.attributes[attribute.name().toString().toStdString()] = attribute.value().toString().toStdString();
        readContent(reader, child);
        element.children.push_back(std::move(child));
    }
}

/// A document as read: its root, and what the reader complained about.
struct XmlDocument {
    XmlElement root;
    std::string documentType;
    std::string error; ///< empty if the text is well-formed
};

inline XmlDocument readXml(const std::string& text) {
    QXmlStreamReader reader(QByteArray(text.data(), static_cast<qsizetype>(text.size())));
    XmlDocument document;
    XmlElement holder;
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::StartElement) {
        if (reader.isDTD())
            document.documentType = reader.dtdName().toString().toStdString();
    }
    if (reader.isStartElement()) {
        document.root.name = reader.name().toString().toStdString();
        const auto attributes = reader.attributes();
        for (const auto& attribute : attributes)
            document.root.attributes[attribute.name().toString().toStdString()] =
                attribute.value().toString().toStdString();
        readContent(reader, document.root);
    }
    // What stands behind the root belongs to a document too.
    while (!reader.atEnd())
        reader.readNext();
    if (reader.hasError())
        document.error = reader.errorString().toStdString() + " in line " + std::to_string(reader.lineNumber());
    return document;
}

} // namespace zuvo::tests
