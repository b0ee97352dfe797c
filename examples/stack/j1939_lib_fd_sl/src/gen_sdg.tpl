/*
 * __GEN_SDG_NJX_INFORMATION__ */

/* Safety data groups (SAE J1939-76): their configurations, and the way of their data from and to the variables of the
 * application. A message has at most 64 bytes, as long as its data.
 *
 * Groups are counted from 0 for each direction, by ascending PGN. */

__GEN_SDG_INCLUDES__
__GEN_SDG_DATA_DEFINITION__
/* variables of the application */
__GEN_SDG_VARIABLES__
#ifdef J1939_SDG_TRANS_CNT
UNSIGNED32 genSdgGetTxPgn(UNSIGNED16 sdgNr)
{
	return (sdgNr < sdgTrCnt) ? sdgTrCfg_l0[sdgNr].pgn : 0ul;
}

/* safety cycle time */
UNSIGNED32 genSdgGetTxSct(UNSIGNED16 sdgNr)
{
	return (sdgNr < sdgTrCnt) ? sdgTrCfg_l0[sdgNr].cycleTime : 0ul;
}

SDG_TR_T *getTrSdg(UNSIGNED16 sdgNr)
{
	return (sdgNr < sdgTrCnt) ? &sdgTr_l0[sdgNr] : NULL;
}
#endif /* J1939_SDG_TRANS_CNT */

#ifdef J1939_SDG_REC_CNT
UNSIGNED32 genSdgGetRxPgn(UNSIGNED16 sdgNr)
{
	return (sdgNr < (sdgRecCnt / J1939_SDG_REC_ADDR_CNT)) ? sdgRecCfg_l0[sdgNr].pgn : 0ul;
}

/* number of the group, or the number of groups if there is none of this PGN */
UNSIGNED16 getRecSdgIdx(UNSIGNED32 pgn)
{
UNSIGNED16 sdgNr = 0u;

	while ((sdgNr < (sdgRecCnt / J1939_SDG_REC_ADDR_CNT)) && (sdgRecCfg_l0[sdgNr].pgn != pgn)) {
		sdgNr++;
	}
	return (sdgNr);
}

/* a group has a record for each sender: number of the group * J1939_SDG_REC_ADDR_CNT + number of the sender */
SDG_REC_T *getRecSdg(UNSIGNED16 recIdx)
{
	return (recIdx < sdgRecCnt) ? &sdgRec_l0[recIdx] : NULL;
}

const SDG_REC_CONFIG_T *getRecSdgConfig(UNSIGNED16 sdgNr)
{
	return (sdgNr < (sdgRecCnt / J1939_SDG_REC_ADDR_CNT)) ? &sdgRecCfg_l0[sdgNr] : NULL;
}
#endif /* J1939_SDG_REC_CNT */

/* the statements of the mapping take the data cleared; a function of its own, so that nothing but the parameters and
 * the result has a name beside them that a variable could have too */
static void clearData(UNSIGNED8 *pData)
{
UNSIGNED8 i;

	for (i = 0u; i < 64u; i++) {
		pData[i] = 0x00u;
	}
}

/* fills the data of a message from the variables; returns its length, 0 if there is no such group. The buffer has room
 * for the longest message. */
UNSIGNED8 genSdgTransmitMapping(UNSIGNED16 sdgNr, UNSIGNED8 *pData)
{
UNSIGNED8 pgLen = 0u;

	(void)sdgNr;
	(void)pData;
	clearData(pData);
__GEN_SDG_TRANSMIT_MAPPING__
	return (pgLen);
}

/* takes the data of a checked message into the variables of its sender */
RET_T genSdgReceiveMapping(UNSIGNED16 sdgNr, UNSIGNED16 addrIdx, const UNSIGNED8 *pBuffer)
{
RET_T retVal = RET_PARAMETER_INVALID;

	(void)sdgNr;
	(void)addrIdx;
	(void)pBuffer;
__GEN_SDG_RECEIVE_MAPPING__
	return (retVal);
}
