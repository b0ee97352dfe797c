__GEN_SRDO_NJX_INFORMATION__
/* Safety-relevant data objects (EN 50325-5): their settings, the check of their messages, and the way of their data
 * from and to the variables. */

__GEN_SRDO_INCLUDES__
/* state of the module */
__GEN_SRDO_INIT_CONFIG_VALID__
__GEN_SRDO_INIT_NMT_STATE__
__GEN_SRDO_INIT_CONFIG_READY__
__GEN_SRDO_INIT_SRDO_TIMER__

/* settings and mappings of the SRDOs */
__GEN_SRDO_DATA_DEFINITION__
/* mapped variables and their copies */
__GEN_SRDO_OD_VARIABLES__
__GEN_SRDO_OD_ENTRY__
/* settings of an SRDO by the index of its communication object */
static CO_SRDO_DATA_T *getSrdoDataPtr(UNSIGNED16 index)
{
CO_SRDO_DATA_T *pSrdo = NULL;

__GEN_SRDO_GET_DATA_PTR__
	return (pSrdo);
}

/* first receive copy: the data as they are */
static void saveRecDataNormal(UNSIGNED16 srdoNr, const UNSIGNED8 *pData)
{
	(void)srdoNr;
	(void)pData;
__GEN_SRDO_RECEIVE_MAPPING1__}

/* second receive copy: the inverted data, which make both copies valid */
static void saveRecDataInvers(UNSIGNED16 srdoNr, const UNSIGNED8 *pData)
{
	(void)srdoNr;
	(void)pData;
__GEN_SRDO_RECEIVE_MAPPING2__}

/* variable of a mapped object, NULL if it has none here */
void *srdoGetObject(UNSIGNED16 index, UNSIGNED8 subIndex)
{
UNSIGNED16 i = 0u;

	(void)i;
	(void)index;
	(void)subIndex;
#if defined(SRDO_OD_ENTRY_U8_CNT) && (SRDO_OD_ENTRY_U8_CNT > 0)
	for (i = 0u; i < SRDO_OD_ENTRY_U8_CNT; i++) {
		if ((odEntry_U8[i].index == index) && (odEntry_U8[i].subIndex == subIndex)) {
			return (odEntry_U8[i].pData);
		}
	}
#endif /* SRDO_OD_ENTRY_U8_CNT */
#if defined(SRDO_OD_ENTRY_U16_CNT) && (SRDO_OD_ENTRY_U16_CNT > 0)
	for (i = 0u; i < SRDO_OD_ENTRY_U16_CNT; i++) {
		if ((odEntry_U16[i].index == index) && (odEntry_U16[i].subIndex == subIndex)) {
			return (odEntry_U16[i].pData);
		}
	}
#endif /* SRDO_OD_ENTRY_U16_CNT */
#if defined(SRDO_OD_ENTRY_U32_CNT) && (SRDO_OD_ENTRY_U32_CNT > 0)
	for (i = 0u; i < SRDO_OD_ENTRY_U32_CNT; i++) {
		if ((odEntry_U32[i].index == index) && (odEntry_U32[i].subIndex == subIndex)) {
			return (odEntry_U32[i].pData);
		}
	}
#endif /* SRDO_OD_ENTRY_U32_CNT */
#if defined(SRDO_OD_ENTRY_U64_CNT) && (SRDO_OD_ENTRY_U64_CNT > 0)
	for (i = 0u; i < SRDO_OD_ENTRY_U64_CNT; i++) {
		if ((odEntry_U64[i].index == index) && (odEntry_U64[i].subIndex == subIndex)) {
			return (odEntry_U64[i].pData);
		}
	}
#endif /* SRDO_OD_ENTRY_U64_CNT */
#if defined(SRDO_OD_ENTRY_I8_CNT) && (SRDO_OD_ENTRY_I8_CNT > 0)
	for (i = 0u; i < SRDO_OD_ENTRY_I8_CNT; i++) {
		if ((odEntry_I8[i].index == index) && (odEntry_I8[i].subIndex == subIndex)) {
			return (odEntry_I8[i].pData);
		}
	}
#endif /* SRDO_OD_ENTRY_I8_CNT */
#if defined(SRDO_OD_ENTRY_I16_CNT) && (SRDO_OD_ENTRY_I16_CNT > 0)
	for (i = 0u; i < SRDO_OD_ENTRY_I16_CNT; i++) {
		if ((odEntry_I16[i].index == index) && (odEntry_I16[i].subIndex == subIndex)) {
			return (odEntry_I16[i].pData);
		}
	}
#endif /* SRDO_OD_ENTRY_I16_CNT */
#if defined(SRDO_OD_ENTRY_I32_CNT) && (SRDO_OD_ENTRY_I32_CNT > 0)
	for (i = 0u; i < SRDO_OD_ENTRY_I32_CNT; i++) {
		if ((odEntry_I32[i].index == index) && (odEntry_I32[i].subIndex == subIndex)) {
			return (odEntry_I32[i].pData);
		}
	}
#endif /* SRDO_OD_ENTRY_I32_CNT */
#if defined(SRDO_OD_ENTRY_R32_CNT) && (SRDO_OD_ENTRY_R32_CNT > 0)
	for (i = 0u; i < SRDO_OD_ENTRY_R32_CNT; i++) {
		if ((odEntry_R32[i].index == index) && (odEntry_R32[i].subIndex == subIndex)) {
			return (odEntry_R32[i].pData);
		}
	}
#endif /* SRDO_OD_ENTRY_R32_CNT */
	return (NULL);
}

void srdoInit(UNSIGNED8 ownNodeId, CO_SRDO_TIMER_T *pTimer)
{
	(void)ownNodeId;
	configurationValid = 0u;
	srdoConfigReady = 0u;
	srdoNmtState = CO_NMT_STATE_PREOP;
	pSrdoTimer = pTimer;
__GEN_SRDO_SET_DEFAULT_VALUE__}

void srdoSetNmtState(CO_NMT_STATE_T state)
{
	srdoNmtState = state;
}

/* the configuration has been checked against its signature */
void srdoSetConfigurationValid(UNSIGNED8 valid)
{
	configurationValid = valid;
	srdoConfigReady = 1u;
}

CO_SRDO_TIMER_T *srdoGetTimer(void)
{
	return (pSrdoTimer);
}

static BOOL_T isExchangeAllowed(void)
{
	return (((srdoConfigReady != 0u) && (configurationValid != 0u)
		&& (srdoNmtState == CO_NMT_STATE_OPER)) ? CO_TRUE : CO_FALSE);
}

/* This function is called from CANopen stack after both messages of an SRDO have come within its validation time. */
RET_T srdoReceive(UNSIGNED16 srdoNr, const UNSIGNED8 *pNormal, const UNSIGNED8 *pInvers, UNSIGNED8 len)
{
CO_SRDO_DATA_T *pSrdo = getSrdoDataPtr((UNSIGNED16)(0x1300u + srdoNr));
UNSIGNED8 i;

	if ((pSrdo == NULL) || (isExchangeAllowed() != CO_TRUE)) {
		return (RET_PARAMETER_INVALID);
	}
	for (i = 0u; i < len; i++) {
		/* If data are not correct */
		if ((pNormal[i] ^ pInvers[i]) != 0xffu) {
			pSrdo->dataValid = CO_SRDO_DATA_INVALID;
			return (RET_PARAMETER_INVALID);
		}
	}
	saveRecDataNormal(srdoNr, pNormal);
	saveRecDataInvers(srdoNr, pInvers);
	pSrdo->dataValid = CO_SRDO_DATA_VALID;
	return (RET_OK);
}

/* transmit copy; nothing but the parameters has a name here that a variable could have too */
static void copyTransData(UNSIGNED16 srdoNr, UNSIGNED8 *pNormal, UNSIGNED8 *pInvers)
{
	(void)srdoNr;
	(void)pNormal;
	(void)pInvers;
__GEN_SRDO_TRANSMIT_MAPPING__}

/* This function is called from CANopen stack after refresh time is up. */
RET_T srdoTransmit(UNSIGNED16 srdoNr, UNSIGNED8 *pNormal, UNSIGNED8 *pInvers, UNSIGNED8 len)
{
CO_SRDO_DATA_T *pSrdo = getSrdoDataPtr((UNSIGNED16)(0x1300u + srdoNr));
UNSIGNED8 i;

	if ((pSrdo == NULL) || (isExchangeAllowed() != CO_TRUE)) {
		return (RET_PARAMETER_INVALID);
	}
	copyTransData(srdoNr, pNormal, pInvers);
	for (i = 0u; i < len; i++) {
		/* data not ok, transmission forbidden */
		if ((pNormal[i] ^ pInvers[i]) != 0xffu) {
			pSrdo->dataValid = CO_SRDO_DATA_INVALID;
			return (RET_PARAMETER_INVALID);
		}
	}
	pSrdo->dataValid = CO_SRDO_DATA_VALID;
	return (RET_OK);
}
