#include "platform/typelib/Description.h"

namespace wnplatform::typelib {
namespace {

std::string QuotedText(const std::string& text) {
    std::string quoted = "(\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + "\")";
}

std::string VersionText(WORD major, WORD minor) {
    return "version(" + std::to_string(major) + "." + std::to_string(minor) + ")";
}

// A list in square brackets, or nothing for an empty one.
class AttributeList {
public:
    void Add(const std::string& attribute) { (m_text += m_text.empty() ? "[" : ",") += attribute; }
    void AddIf(bool present, const char* attribute) {
        if (present) Add(attribute);
    }
    void AddHelp(const std::string& help) {
        if (!help.empty()) Add("helpstring" + QuotedText(help));
    }
    std::string Text() const { return m_text.empty() ? m_text : m_text + "]"; }

private:
    std::string m_text;
};

void AddEntry(AttributeList& list, const Entry& entry) {
    list.Add("uuid(" + GuidText(entry.guid) + ")");
    if (entry.majorVersion != 0 || entry.minorVersion != 0) {
        list.Add(VersionText(entry.majorVersion, entry.minorVersion));
    }
    list.AddHelp(entry.help);
    list.AddIf((entry.flags & TYPEFLAG_FHIDDEN) != 0, "hidden");
    list.AddIf((entry.flags & TYPEFLAG_FRESTRICTED) != 0, "restricted");
}

std::string ParameterText(const Parameter& parameter) {
    AttributeList list;
    list.AddIf((parameter.flags & PARAMFLAG_FIN) != 0, "in");
    list.AddIf((parameter.flags & PARAMFLAG_FOUT) != 0, "out");
    list.AddIf((parameter.flags & PARAMFLAG_FRETVAL) != 0, "retval");
    return list.Text() + TypeText(parameter.type) + " " + parameter.name;
}

std::string MethodText(const Method& method) {
    AttributeList list;
    if (method.hasId) list.Add("id(" + std::to_string(static_cast<ULONG>(method.id)) + ")");
    list.AddIf(method.kind == INVOKE_PROPERTYGET, "propget");
    list.AddIf(method.kind == INVOKE_PROPERTYPUT, "propput");
    list.AddIf(method.kind == INVOKE_PROPERTYPUTREF, "propputref");
    list.AddHelp(method.help);
    list.AddIf((method.flags & FUNCFLAG_FHIDDEN) != 0, "hidden");
    list.AddIf((method.flags & FUNCFLAG_FRESTRICTED) != 0, "restricted");
    std::string text = list.Text() + TypeText(method.result) + " " + method.name + "(";
    const char* separator = "";
    for (const Parameter& parameter : method.parameters) {
        text += separator + ParameterText(parameter);
        separator = ",";
    }
    return text + ");\n";
}

std::string InterfaceText(const Interface& interface_) {
    AttributeList list;
    list.AddIf(interface_.object, "object");
    AddEntry(list, interface_);
    list.AddIf(interface_.IsDual(), "dual");
    list.AddIf((interface_.flags & TYPEFLAG_FNONEXTENSIBLE) != 0, "nonextensible");
    list.AddIf(interface_.automation, "oleautomation");
    list.AddIf(interface_.pointerDefault == PointerDefault::kUnique, "pointer_default(unique)");
    list.AddIf(interface_.pointerDefault == PointerDefault::kRef, "pointer_default(ref)");
    list.AddIf(interface_.pointerDefault == PointerDefault::kPtr, "pointer_default(ptr)");
    std::string text = list.Text() + "interface " + interface_.name;
    if (interface_.base) text += ":" + interface_.baseName;
    text += "{\n";
    for (const Method& method : interface_.methods) text += MethodText(method);
    return text + "};\n";
}

std::string ClassText(const CoClass& coclass) {
    AttributeList list;
    AddEntry(list, coclass);
    list.AddIf((coclass.flags & TYPEFLAG_FCANCREATE) == 0, "noncreatable");
    std::string text = list.Text() + "coclass " + coclass.name + "{\n";
    for (const Implemented& implemented : coclass.interfaces) {
        AttributeList flags;
        flags.AddIf((implemented.flags & IMPLTYPEFLAG_FDEFAULT) != 0, "default");
        flags.AddIf((implemented.flags & IMPLTYPEFLAG_FSOURCE) != 0, "source");
        flags.AddIf((implemented.flags & IMPLTYPEFLAG_FRESTRICTED) != 0, "restricted");
        text += flags.Text() + "interface " + implemented.name + ";\n";
    }
    return text + "};\n";
}

}  // namespace

std::string Canonical(const Library& library) {
    AttributeList list;
    list.Add("uuid(" + GuidText(library.guid) + ")");
    list.Add(VersionText(library.majorVersion, library.minorVersion));
    list.Add("lcid(" + std::to_string(library.lcid) + ")");
    list.AddHelp(library.help);
    std::string text = list.Text() + "library " + library.name + "{\n";
    if (library.importsStandard) text += "importlib(\"stdole2.tlb\");\n";
    // Any of them may be named before its place.
    for (const Library::TypeEntry& entry : library.types) {
        if (entry.interface_) text += "interface " + entry.interface_->name + ";\n";
    }
    for (const Library::TypeEntry& entry : library.types) {
        text += entry.interface_ ? InterfaceText(*entry.interface_) : ClassText(*entry.coclass);
    }
    return text + "};\n";
}

}  // namespace wnplatform::typelib
