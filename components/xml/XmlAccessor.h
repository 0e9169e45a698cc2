// The XML simple accessor over pugixml.
#pragma once

#include <pugixml.hpp>

#include <string>

#include "common/CodePageText.h"
#include "components/DualObject.h"
#include "components/xml/ChildPath.h"
#include "wncom/XMLSimpleAccessor.h"

namespace wncom::components {

class XmlAccessor : public DualObject<IXMLSimpleAccessor> {
public:
    HRESULT STDMETHODCALLTYPE Reserved7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetDelimiter(BSTR delimiter) override;
    HRESULT STDMETHODCALLTYPE Reserved9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LoadXML(BSTR document) override;
    HRESULT STDMETHODCALLTYPE Reserved13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetXML(BSTR query, LONG flag, BSTR* text) override;

private:
    HRESULT Load(WideView document);
    HRESULT Query(const std::string& query, BSTR* text);

    std::string m_delimiter = ";";
    pugi::xml_document m_document;
    pugi::xml_node m_top;  // empty while nothing is loaded
    ChildWalker m_walker;
};

}  // namespace wncom::components
