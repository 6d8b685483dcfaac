#pragma once

#include <string>

namespace tests {

inline std::string document(const std::string& samples) {
    return "<?xml version=\"1.0\"?>\n<root><TELEM:Aggregator><TELEM:SampleGroup name=\"g\">" + samples +
           "</TELEM:SampleGroup></TELEM:Aggregator></root>\n";
}

inline std::string sampleXml(const std::string& name, const std::string& id, const std::string& fields = {}) {
    return "<TELC:sample name=\"" + name + "\" sampleID=\"" + id + "\">" + fields + "</TELC:sample>";
}

inline std::string fieldXml(const std::string& name, const std::string& lsb, const std::string& msb) {
    return "<TELC:sampleSubGroup name=\"" + name + "\"><TELC:lsb>" + lsb + "</TELC:lsb><TELC:msb>" + msb +
           "</TELC:msb><x:lsb>9</x:lsb></TELC:sampleSubGroup>";
}

} // namespace tests
