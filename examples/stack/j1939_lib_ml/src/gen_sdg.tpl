/*
 * __GEN_SDG_NJX_INFORMATION__ */

/* Safety data groups (SAE J1939-76): their configurations, and the way of their data from and to the variables of the
 * application. A message has 8 bytes.
 *
 * Groups are counted from 0 for each direction, by ascending PGN, and for each line. */

__GEN_SDG_INCLUDES__
__GEN_SDG_DATA_DEFINITION__
/* records and configurations by the line; gen_define.h counts the groups of each */
#define SDG_MAX_LINES 4
#if CAN_MULTI_LINE_CNT > SDG_MAX_LINES
#error more lines than this module has room for
#endif

#ifdef J1939_SDG_REC_CNT
static const struct
{
	SDG_REC_T *pRecords;
	const SDG_REC_CONFIG_T *pConfigs;
} recLines[SDG_MAX_LINES] = {
#if SDG_LINE_COUNT_0(J1939_SDG_REC_COUNTS) > 0
	{ sdgRec_l0, sdgRecCfg_l0 },
#else
	{ NULL, NULL },
#endif
#if SDG_LINE_COUNT_1(J1939_SDG_REC_COUNTS) > 0
	{ sdgRec_l1, sdgRecCfg_l1 },
#else
	{ NULL, NULL },
#endif
#if SDG_LINE_COUNT_2(J1939_SDG_REC_COUNTS) > 0
	{ sdgRec_l2, sdgRecCfg_l2 },
#else
	{ NULL, NULL },
#endif
#if SDG_LINE_COUNT_3(J1939_SDG_REC_COUNTS) > 0
	{ sdgRec_l3, sdgRecCfg_l3 },
#else
	{ NULL, NULL },
#endif
};
#endif /* J1939_SDG_REC_CNT */
#ifdef J1939_SDG_TRANS_CNT
static const struct
{
	SDG_TR_T *pRecords;
	const SDG_TR_CONFIG_T *pConfigs;
} trLines[SDG_MAX_LINES] = {
#if SDG_LINE_COUNT_0(J1939_SDG_TRANS_COUNTS) > 0
	{ sdgTr_l0, sdgTrCfg_l0 },
#else
	{ NULL, NULL },
#endif
#if SDG_LINE_COUNT_1(J1939_SDG_TRANS_COUNTS) > 0
	{ sdgTr_l1, sdgTrCfg_l1 },
#else
	{ NULL, NULL },
#endif
#if SDG_LINE_COUNT_2(J1939_SDG_TRANS_COUNTS) > 0
	{ sdgTr_l2, sdgTrCfg_l2 },
#else
	{ NULL, NULL },
#endif
#if SDG_LINE_COUNT_3(J1939_SDG_TRANS_COUNTS) > 0
	{ sdgTr_l3, sdgTrCfg_l3 },
#else
	{ NULL, NULL },
#endif
};
#endif /* J1939_SDG_TRANS_CNT */

/* variables of the application */
__GEN_SDG_VARIABLES__
#ifdef J1939_SDG_TRANS_CNT
UNSIGNED32 genSdgGetTxPgn(UNSIGNED8 canLine, UNSIGNED16 sdgNr)
{
	return (sdgNr < sdgTrCnt[canLine]) ? trLines[canLine].pConfigs[sdgNr].pgn : 0ul;
}

/* safety cycle time */
UNSIGNED32 genSdgGetTxSct(UNSIGNED8 canLine, UNSIGNED16 sdgNr)
{
	return (sdgNr < sdgTrCnt[canLine]) ? trLines[canLine].pConfigs[sdgNr].cycleTime : 0ul;
}

SDG_TR_T *getTrSdg(UNSIGNED8 canLine, UNSIGNED16 sdgNr)
{
	return (sdgNr < sdgTrCnt[canLine]) ? &trLines[canLine].pRecords[sdgNr] : NULL;
}
#endif /* J1939_SDG_TRANS_CNT */

#ifdef J1939_SDG_REC_CNT
UNSIGNED32 genSdgGetRxPgn(UNSIGNED8 canLine, UNSIGNED16 sdgNr)
{
	return (sdgNr < (sdgRecCnt[canLine] / J1939_SDG_REC_ADDR_CNT)) ? recLines[canLine].pConfigs[sdgNr].pgn : 0ul;
}

/* number of the group, or the number of groups if there is none of this PGN */
UNSIGNED16 getRecSdgIdx(UNSIGNED8 canLine, UNSIGNED32 pgn)
{
UNSIGNED16 sdgNr = 0u;

	while ((sdgNr < (sdgRecCnt[canLine] / J1939_SDG_REC_ADDR_CNT)) && (recLines[canLine].pConfigs[sdgNr].pgn != pgn)) {
		sdgNr++;
	}
	return (sdgNr);
}

/* a group has a record for each sender: number of the group * J1939_SDG_REC_ADDR_CNT + number of the sender */
SDG_REC_T *getRecSdg(UNSIGNED8 canLine, UNSIGNED16 recIdx)
{
	return (recIdx < sdgRecCnt[canLine]) ? &recLines[canLine].pRecords[recIdx] : NULL;
}

const SDG_REC_CONFIG_T *getRecSdgConfig(UNSIGNED8 canLine, UNSIGNED16 sdgNr)
{
	return (sdgNr < (sdgRecCnt[canLine] / J1939_SDG_REC_ADDR_CNT)) ? &recLines[canLine].pConfigs[sdgNr] : NULL;
}
#endif /* J1939_SDG_REC_CNT */

/* the statements of the mapping take the data cleared; a function of its own, so that nothing but the parameters and
 * the result has a name beside them that a variable could have too */
static void clearData(UNSIGNED8 *pData)
{
UNSIGNED8 i;

	for (i = 0u; i < 8u; i++) {
		pData[i] = 0x00u;
	}
}

/* fills the data of a message from the variables; returns its length, 0 if there is no such group */
UNSIGNED8 genSdgTransmitMapping(UNSIGNED8 canLine, UNSIGNED16 sdgNr, UNSIGNED8 *pData)
{
UNSIGNED8 pgLen = 0u;

	(void)sdgNr;
	(void)pData;
	(void)canLine;
	clearData(pData);
__GEN_SDG_TRANSMIT_MAPPING__
	return (pgLen);
}

/* takes the data of a checked message into the variables of its sender */
RET_T genSdgReceiveMapping(UNSIGNED8 canLine, UNSIGNED16 sdgNr, UNSIGNED16 addrIdx, const UNSIGNED8 *pBuffer)
{
RET_T retVal = RET_PARAMETER_INVALID;

	(void)sdgNr;
	(void)addrIdx;
	(void)pBuffer;
	(void)canLine;
__GEN_SDG_RECEIVE_MAPPING__
	return (retVal);
}
