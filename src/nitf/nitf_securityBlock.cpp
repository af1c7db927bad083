#include "nitf/nitf_securityBlock.h"

GR_STATUS NITFSecurityBlock::read(NITFFieldReader& fields, NITFVersion version) {
  m_version = version;
  return version == NITF_VERSION_20 ? read20(fields) : read21(fields);
}

GR_STATUS NITFSecurityBlock::read20(NITFFieldReader& fields) {
  // MIL-STD-2500A: a downgrade code of 999998 adds the 40 bytes of the downgrading event.
  constexpr size_t DOWNGRADE_PLACE = 161;
  m_isLong = fields.isAhead(DOWNGRADE_PLACE, "999998");
  return m_isLong ? fields.readText(m_longBlock) : fields.readText(m_block);
}

GR_STATUS NITFSecurityBlock::read21(NITFFieldReader& fields) {
  GR_RETURN_IF_FAILED(fields.readText(m_SCLAS));
  GR_RETURN_IF_FAILED(fields.readText(m_SCLSY));
  GR_RETURN_IF_FAILED(fields.readText(m_SCODE));
  GR_RETURN_IF_FAILED(fields.readText(m_SCTLH));
  GR_RETURN_IF_FAILED(fields.readText(m_SREL));
  GR_RETURN_IF_FAILED(fields.readText(m_SDCTP));
  GR_RETURN_IF_FAILED(fields.readText(m_SDCDT));
  GR_RETURN_IF_FAILED(fields.readText(m_SDCXM));
  GR_RETURN_IF_FAILED(fields.readText(m_SDG));
  GR_RETURN_IF_FAILED(fields.readText(m_SDGDT));
  GR_RETURN_IF_FAILED(fields.readText(m_SCLTX));
  GR_RETURN_IF_FAILED(fields.readText(m_SCATP));
  GR_RETURN_IF_FAILED(fields.readText(m_SCAUT));
  GR_RETURN_IF_FAILED(fields.readText(m_SCRSN));
  GR_RETURN_IF_FAILED(fields.readText(m_SSRDT));
  return fields.readText(m_SCTLN);
}

GR_STATUS NITFSecurityBlock::addMetadata(NITFMetadata& metadata) const {
  if (m_version == NITF_VERSION_20) {
    return metadata.addText("SECURITY", m_isLong ? m_longBlock.text() : m_block.text());
  }
  GR_RETURN_IF_FAILED(metadata.addText("SCLAS", m_SCLAS.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SCLSY", m_SCLSY.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SCODE", m_SCODE.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SCTLH", m_SCTLH.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SREL", m_SREL.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SDCTP", m_SDCTP.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SDCDT", m_SDCDT.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SDCXM", m_SDCXM.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SDG", m_SDG.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SDGDT", m_SDGDT.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SCLTX", m_SCLTX.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SCATP", m_SCATP.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SCAUT", m_SCAUT.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SCRSN", m_SCRSN.text()));
  GR_RETURN_IF_FAILED(metadata.addTextIfNotBlank("SSRDT", m_SSRDT.text()));
  return metadata.addTextIfNotBlank("SCTLN", m_SCTLN.text());
}
